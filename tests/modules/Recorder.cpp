// Recorder.cpp -- writes down every call that it gets; a drawing module, so that it fits every list of class 1
#include "RecorderBody.h"

void ModuleGetDescription(ModuleDescription *pmd)
{
    Describe(pmd);
    CopyTo(pmd->szName, u"Recorder");
    pmd->dwClass = MODULECLASS_DRAWING;
}
