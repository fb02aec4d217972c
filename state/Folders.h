// Folders.h -- the path table and the folder variables
#pragma once

#include "platform/BaseTypes.h"

#include <string_view>

// Rows of the path table.
enum PathRow : u32 {
    PATH_PROGRAM = 0,
    PATH_MODULES,
    PATH_DATA,
    PATH_GLOBALS,
    PATH_FAVORITES,
    PATH_PRESETS,
    PATH_PRESETS_PATTERN,
    PATH_MODULES_PATTERN,
    PATH_FRAGMENTS,
    PATH_FRAGMENTS_PATTERN,
    PATH_IMAGES,
    PATH_IMAGES_PATTERN,
    PATH_SHADERS,
    PATH_SHADERS_PATTERN,
    PATH_SOUND_LIBRARY,
    PATH_PALETTES,
    PATH_OBJECTS,
    PATH_SCREENSHOTS,
    PATH_PALETTE_EDITOR,
    PATH_WINDOW_LAYOUTS,
    PATH_SHADER_EDITOR,
    PATH_SHADERTOY,
    PATH_SHADERTOY_CACHE,
    PATH_SHADERTOY_SHADERS,
    PATH_SHADERTOY_SHADERS_PATTERN,
    PATH_SHADERTOY_PLAYLISTS,
    PATH_SHADERTOY_PLAYLISTS_PATTERN,
    PATH_ROWS
};

// What the command line may put in the place of the worked-out folders; empty: nothing.
struct FolderOverrides {
    std::u16string_view program; // full path of the program, for tests
    std::u16string_view data;    // --data
    std::u16string_view modules; // --modules
};

// Works out how the program was installed, sets EXE_BASEFOLDER, DLL_BASEFOLDER and DAT_BASEFOLDER in the process
// environment and expands the path table. Runs before anything else. [main-thread]
void InitFolders(const FolderOverrides &overrides);

// An expanded row of the table, with native separators.
const char16_t *FolderPath(PathRow eRow);

// "Debugging", "Installed\n", "Portable\n", or "Unknown" before InitFolders.
const char16_t *ConfigurationType();

// Looks for the name and extension of the path in the Images, Palettes, ScreenShots, Shaders and Presets folders, in
// this order. Non-zero: the buffer holds the full path of the first hit; 0: it is unchanged. [any-thread]
u32 FindDataFile(char16_t (&szPath)[NAME_CHARS]);

// Whether the path, of any length, is one of a file inside the data folder.
bool LiesInDataFolder(std::u16string_view path);
// Cuts a path inside the data folder down to its name and extension. Non-zero if it did.
u32 MakeDataFileRelative(char16_t (&szPath)[NAME_CHARS]);
