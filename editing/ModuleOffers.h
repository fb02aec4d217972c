// ModuleOffers.h -- which modules a list accepts
#pragma once

#include "state/ModuleRecord.h"

// Whether a list of that kind (ModuleIndex), on a plane of that type, accepts the module. Post-processing accepts what
// MODULEINDEX_OVERLAYEFFECT does. Says nothing of whether the module can be used: see bUnavailable.
bool ListAccepts(const ModuleDescription &md, u32 dwModuleType, bool bIndexed);

// What the user chooses when a module is added: the module's number and, for a shader, the shader's number plus one.
constexpr u32 ModuleKey(u32 iModule, u32 dwShader)
{
    return dwShader << 16 | (iModule & 0xFFFF);
}
constexpr u32 ModuleOfKey(u32 dwKey)
{
    return dwKey & 0xFFFF;
}
constexpr u32 ShaderOfKey(u32 dwKey)
{
    return dwKey >> 16;
}
