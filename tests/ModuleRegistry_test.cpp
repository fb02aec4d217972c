// ModuleRegistry_test.cpp -- the table of module libraries, filled from folders that this test makes
#include "modules/ModuleRegistry.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class ModuleRegistry : public testing::Test {
  protected:
    void SetUp() override
    {
        InitFolders({u"/nowhere/vorticade", {}, folder.Wide()});
    }
    void TearDown() override
    {
        UnloadModules();
    }

    // Puts a copy of a test module into the folder.
    void Place(const char *pszModule, const std::string &sName) const
    {
        fs::copy_file(fs::path(TEST_MODULE_FOLDER) / pszModule, folder / sName);
    }
    // What loading the folder says on standard error.
    static std::string LoadAndListen()
    {
        testing::internal::CaptureStderr();
        LoadModuleFolder();
        return testing::internal::GetCapturedStderr();
    }
    static std::vector<std::string> Names()
    {
        std::vector<std::string> as;
        for (u32 i = 0; i < ModuleCount(); i++)
            as.push_back(ToUtf8(GetModuleRecord(i)->szDll));
        return as;
    }

    TempFolder folder;
};

using Strings = std::vector<std::string>;

TEST_F(ModuleRegistry, FortyModulesGrowTheTableAndStandInTheOrderOfTheirNames)
{
    Strings asWanted;
    for (int i = 0; i < 40; i++)
        asWanted.push_back("Copy" + std::to_string(100 + i * 17 % 40) + ".dll");
    for (const std::string &s : asWanted)
        Place("Idle.dll", s);
    std::sort(asWanted.begin(), asWanted.end());

    EXPECT_EQ("", LoadAndListen());
    EXPECT_EQ(asWanted, Names());
    std::set<ModuleDrawFrameFn> Distinct;
    for (u32 i = 0; i < ModuleCount(); i++) {
        const ModuleRecord *pmr = GetModuleRecord(i);
        EXPECT_EQ(static_cast<i32>(i), pmr->iIndex);
        EXPECT_EQ("Idle", ToUtf8(pmr->md.szName));
        EXPECT_EQ(pmr, FindModuleRecord(pmr->szDll));
        EXPECT_EQ(nullptr, pmr->mf.pfnMixPlanes);
        Distinct.insert(pmr->mf.pfnDrawFrame);
    }
    EXPECT_EQ(40u, Distinct.size()) << "each record has the entry points of its own library";
    EXPECT_EQ(nullptr, GetModuleRecord(40));
    EXPECT_EQ(nullptr, GetModuleRecord(ALL_ONES));
}

TEST_F(ModuleRegistry, WhatIsNoModuleIsPassedOverAndABrokenOneIsNamed)
{
    Place("Idle.dll", "A.dll");
    Place("MissingEntryPoint.dll", "B.dll");
    Place("NoModule.dll", "C.dll");
    Place("MinimalPainter.dll", "D.DLL");
    folder.Write("E.txt", "not looked at");

    const std::string sSaid = LoadAndListen();
    EXPECT_EQ((Strings{"A.dll", "D.DLL"}), Names());
    EXPECT_NE(std::string::npos, sSaid.find("B.dll")) << sSaid;
    EXPECT_NE(std::string::npos, sSaid.find("ModuleCleanUp")) << sSaid;
    EXPECT_EQ(std::string::npos, sSaid.find("C.dll")) << "the sound monitor library takes this path: " << sSaid;
    EXPECT_EQ(1, GetModuleRecord(1)->iIndex);
}

TEST_F(ModuleRegistry, AFileThatIsNoLibraryEndsTheSearchAndIsNamed)
{
    Place("Idle.dll", "A.dll");
    folder.Write("NotALibrary.dll", "#!/bin/sh\necho no library\n");
    Place("Idle.dll", "Z.dll");

    const std::string sSaid = LoadAndListen();
    EXPECT_EQ(Strings{"A.dll"}, Names());
    EXPECT_NE(std::string::npos, sSaid.find("NotALibrary.dll")) << sSaid;
    testing::internal::CaptureStderr();
    EXPECT_EQ(0u, LoadModule(u""));
    EXPECT_EQ(0u, LoadModule(folder.Wide("NotALibrary.dll")));
    testing::internal::GetCapturedStderr();
}

TEST_F(ModuleRegistry, ALibraryThatIsNotAtItsPathIsLookedForInTheModuleFolder)
{
    Place("Idle.dll", "Moved.dll");
    EXPECT_EQ(1u, LoadModule(u"/somewhere/else/Moved.dll"));
    EXPECT_EQ(Strings{"Moved.dll"}, Names());
}

TEST_F(ModuleRegistry, NamesAreComparedWithoutCaseAndTheFirstOfTwinsWins)
{
    Place("MinimalPainter.dll", "Twin.dll");
    Place("Idle.dll", "twin.dll");
    LoadModuleFolder();
    ASSERT_EQ((Strings{"Twin.dll", "twin.dll"}), Names());
    for (const char16_t *psz : {u"twin.dll", u"TWIN.DLL", u"Twin.dll"})
        EXPECT_EQ(GetModuleRecord(0), FindModuleRecord(psz)) << ToUtf8(psz);
    for (const char16_t *psz : {u"", u"Twin", u"Twin.dll ", u"/Twin.dll"})
        EXPECT_EQ(nullptr, FindModuleRecord(psz)) << ToUtf8(psz);
}

TEST_F(ModuleRegistry, ADescriptionWithoutAnEndGetsOneAndCannotSetTheHostsFlag)
{
    Place("HostileGarbage.dll", "HostileGarbage.dll");
    LoadModuleFolder();
    ASSERT_EQ(1u, ModuleCount());
    const ModuleDescription &md = GetModuleRecord(0)->md;
    EXPECT_EQ(CONTROL_TEXT - 1u, TextLength(md.szName, CONTROL_TEXT));
    EXPECT_EQ(CONTROL_TEXT - 1u, TextLength(md.szDescription, CONTROL_TEXT));
    EXPECT_EQ(65u, TextLength(md.szBuild, 66));
    EXPECT_EQ(0u, md.bUnavailable);
}

TEST_F(ModuleRegistry, TheTableCanBeFilledAgainAfterItWasUnloaded)
{
    Place("Idle.dll", "A.dll");
    LoadModuleFolder();
    UnloadModules();
    EXPECT_EQ(0u, ModuleCount());
    EXPECT_EQ(nullptr, FindModuleRecord(u"A.dll"));
    Place("Idle.dll", "B.dll");
    LoadModuleFolder();
    EXPECT_EQ((Strings{"A.dll", "B.dll"}), Names());
}

} // namespace
