// PresetFolder.h -- a folder of generated presets, and a module table of the full size, for the benchmarks
#pragma once

#include "modules/ModuleRegistry.h"
#include "platform/Text.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace bench {

namespace fs = std::filesystem;

inline u32 NextNumber(u32 *pdwState)
{
    *pdwState = *pdwState * 1664525u + 1013904223u;
    return *pdwState >> 8;
}

// One of 64 modules that all are the same library under another name.
inline std::string ModuleName(u32 iModule)
{
    return "BenchModule" + std::to_string(iModule) + ".dll";
}

inline void LoadManyModules(const fs::path &folder, u32 nModules)
{
    fs::create_directories(folder);
    for (u32 i = 0; i < nModules; i++) {
        fs::copy_file(TEST_MODULE_FOLDER "/Idle.dll", folder / ModuleName(i));
        LoadModule(FromUtf8((folder / ModuleName(i)).string()));
    }
}

// What a preset looks like: modules with controls, 2 to 20 KB, every second one with the sound in it somewhere.
inline std::string PresetText(u32 *pdwState)
{
    const size_t cbWanted = 2048 + NextNumber(pdwState) % (18 * 1024);
    const bool bSound = NextNumber(pdwState) % 2;
    std::string s =
        "<?xml version=\"1.0\"?>\n<Preset>\n\t<NumPlanes>1</NumPlanes>\n\t<Plane0>\n\t\t<Indexed>1</Indexed>\n";
    for (u32 n = 0; s.size() < cbWanted; n++) {
        if (n % 12 == 0)
            s += "\t\t\t<ModuleDLL>" + ModuleName(NextNumber(pdwState) % 64) + "</ModuleDLL>\n";
        const char *pszSource = bSound && NextNumber(pdwState) % 16 == 0 ? "8" : "4";
        s += "\t\t\t<Control" + std::to_string(n % 12) +
             ">\n\t\t\t\t<Name>Group.Control name</Name>\n\t\t\t\t<Source>" + pszSource +
             "</Source>\n\t\t\t\t<WavePeriod>" + std::to_string(NextNumber(pdwState) % 100) +
             "</WavePeriod>\n\t\t\t\t<WavePhase>0." + std::to_string(100000 + NextNumber(pdwState) % 899999) +
             "</WavePhase>\n\t\t\t</Control" + std::to_string(n % 12) + ">\n";
    }
    return s + "\t</Plane0>\n</Preset>"; // no zero byte at the end: search tools would take the file for binary
}

inline void MakePresetFolder(const fs::path &folder, u32 nPresets)
{
    static constexpr const char *apszWord[] = {"Aurora", "Storm", "Quiet", "Neon", "Ember", "Garden", "Fjord", "Glass"};
    fs::create_directories(folder);
    u32 dwState = 1;
    for (u32 i = 0; i < nPresets; i++) {
        const std::string sName = std::string(apszWord[NextNumber(&dwState) % 8]) + " over " +
                                  apszWord[NextNumber(&dwState) % 8] + " " + std::to_string(i) + ".VD";
        std::ofstream(folder / sName, std::ios::binary) << PresetText(&dwState);
    }
}

} // namespace bench
