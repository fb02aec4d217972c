// NoModule.cpp -- a shared library that is no module: it has an entry point, but not the one that makes a module
#include "module.h"

uint32_t ModuleDrawFrame(void *, PlaneInfo *)
{
    return 0;
}
