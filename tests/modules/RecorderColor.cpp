// RecorderColor.cpp -- writes down every call that it gets; a colour module
#include "RecorderBody.h"

void ModuleGetDescription(ModuleDescription *pmd)
{
    Describe(pmd);
    CopyTo(pmd->szName, u"Recorder Color");
    pmd->dwClass = MODULECLASS_COLOR;
}
