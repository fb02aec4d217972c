// ShaderList.h -- the shader files of the data folder as variants of the shader module
#pragma once

#include "state/ModuleRecord.h"

#include <string_view>

// The entry of a number from 0, or null. Builds the list on first need; it is never rebuilt. [main-thread]
const ShaderEntry *GetShaderEntry(u32 iShader);
// Number plus one of the shader of that name without regard to case; 0: none.
u32 FindShaderByName(std::u16string_view name);
void FreeShaderList();
