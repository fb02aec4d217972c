// PresetFolderFixture.h -- a preset folder of its own, and modules under names that a test chooses
#pragma once

#include "library/Favorites.h"
#include "library/PresetLibrary.h"
#include "library/PresetScan.h"
#include "library/PresetTable.h"
#include "modules/ModuleRegistry.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

class PresetFolderTest : public testing::Test {
  protected:
    void SetUp() override
    {
        fs::create_directory(presets);
        UseModules({"Alpha.dll", "Beta.dll", "Gamma.dll"});
    }
    void TearDown() override
    {
        FreePresetLibrary();
        UnloadModules();
    }

    // The same library under each of the names, in this order; in the place of those before.
    void UseModules(const std::vector<std::string> &asName)
    {
        UnloadModules();
        for (const std::string &sName : asName) {
            fs::copy_file(TEST_MODULE_FOLDER "/Idle.dll", data / sName, fs::copy_options::skip_existing);
            ASSERT_EQ(1u, LoadModule(FromUtf8((data / sName).string())));
        }
    }
    static std::string Text(const std::vector<std::string> &asModule, bool bSound = false)
    {
        std::string s = "<?xml version=\"1.0\"?>\n<Preset>\n";
        for (const std::string &sModule : asModule)
            s += "\t<ModuleDLL>" + sModule + "</ModuleDLL>\n";
        return s + (bSound ? "\t<Source>8</Source>\n</Preset>" : "\t<Source>4</Source>\n</Preset>");
    }
    void Write(const std::string &sName, const std::string &sText) const
    {
        data.Write(presets / sName, sText);
    }
    std::string Read(const fs::path &path) const
    {
        return data.Read(path);
    }
    void Open() const
    {
        OpenPresetLibrary(Wide(presets), Wide(data / "Favorites.XML"));
    }
    // What a whole run of the program without windows would do.
    void OpenAndScan() const
    {
        Open();
        ScanPresetFolder(1);
    }
    static std::u16string Wide(const fs::path &path)
    {
        return FromUtf8(path.string());
    }
    std::u16string Path(const std::string &sName) const
    {
        return Wide(presets / sName);
    }

    // The live entries by name, in the order of their slots.
    static std::vector<std::string> Names()
    {
        std::vector<std::string> asName;
        ForEachPreset([&](i32, const PresetInfo *lppi) { asName.push_back(ToUtf8(NameAndExtension(lppi->szPath))); });
        return asName;
    }
    // A copy; zeros if there is none.
    PresetInfo Entry(const std::string &sName) const
    {
        const PresetTableLock lock;
        const PresetInfo *lppi = GetPresetInfo(FindPresetFile(Path(sName)));
        return lppi ? *lppi : PresetInfo{};
    }
    void SetFavor(const std::string &sName, i32 nFavor) const
    {
        const PresetTableLock lock;
        GetPresetInfo(FindPresetFile(Path(sName)))->nFavor = nFavor;
    }
    // Modules by name, "+" in front when the preset follows the sound, "!" when it cannot run; "?" without a summary.
    std::string Summary(const std::string &sName) const
    {
        const PresetInfo info = Entry(sName);
        if (!info.bSummarized)
            return "?";
        std::string s = std::string(info.bSoundSync ? "+" : "") + (info.bCompatible ? "" : "!");
        for (u32 i = 0; i < PRESET_MODULES; i++)
            if (info.bModuleUsed[i])
                s += ToUtf8(NameWithoutExtension(GetModuleRecord(i)->szDll)) + " ";
        return s;
    }

    // Until it holds; false after far more time than it can take.
    template <typename Fn> static bool Soon(Fn &&fn)
    {
        for (i32 i = 0; i < 3000; i++) {
            if (fn())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    TempFolder data;
    fs::path presets = data / "Presets";
};
