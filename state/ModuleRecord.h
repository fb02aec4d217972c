// ModuleRecord.h -- records of the module table and of the shader list
#pragma once

#include "include/module.h"
#include "platform/BaseTypes.h"

struct SharedLibrary;

constexpr u32 MODULE_FILE_CHARS = 256;
constexpr u32 SHADERS_MAX = 256;

// The library handle and its entry points, in the order in which they are looked up.
struct ModuleFunctions {
    SharedLibrary *pLibrary;
    ModuleGetDescriptionFn pfnGetDescription;
    ModuleBuildControlStructureFn pfnBuildControlStructure;
    ModulePreInitializeFn pfnPreInitialize;
    ModuleInitializeFn pfnInitialize;
    ModuleDrawFrameFn pfnDrawFrame;
    ModuleCleanUpFn pfnCleanUp;
    ModuleDestroyControlStructureFn pfnDestroyControlStructure;
    ModuleResolveIndexedPlaneFn pfnResolveIndexedPlane;
    ModuleMixPlanesFn pfnMixPlanes; // never called; may be null
};

// One loaded library. Lives from its loading to the shutdown at a fixed place once loading has ended.
struct ModuleRecord {
    i32 iIndex; // its own place in the table
    ModuleDescription md;
    ModuleFunctions mf;
    char16_t szDll[MODULE_FILE_CHARS]; // file name with extension: the identity of the module
};

// A shader file of the data folder, which presents itself as a variant of the shader module.
struct ShaderEntry {
    u32 dwClass;        // MODULECLASS_DRAWING
    u32 dwCapabilities; // full draw, on indexed and RGB planes
    NameText szPath;    // full path
    NameText szName;    // file name without extension: the identity of the shader
};

struct ShaderList {
    i32 nCount;
    ShaderEntry asEntry[SHADERS_MAX];
};
