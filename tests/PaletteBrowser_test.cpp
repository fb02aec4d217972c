// PaletteBrowser_test.cpp -- the palette browser without its window: rows, reading, strips, what is chosen
#include "toolkit/PaletteBrowser.h"

#include "platform/Files.h"
#include "stock/shared/PaletteFile.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

// A full palette: entry i has the red i, the green twice that, the blue three times.
std::string Full(i32 nColors)
{
    std::string s =
        std::string("\0i\0B", 4) + static_cast<char>(nColors) + static_cast<char>(nColors >> 8) + std::string(2, '\0');
    for (i32 i = 0; i < nColors; i++)
        for (i32 iGun = 1; iGun <= 3; iGun++)
            s += static_cast<char>(i * iGun);
    return s;
}

u32 FullPixel(u32 i)
{
    return 0xFF000000u | (i & 0xFF) << 16 | (2 * i & 0xFF) << 8 | (3 * i & 0xFF);
}

class PaletteBrowserTest : public testing::Test {
  protected:
    void SetUp() override
    {
        szPaletteFolder = folder.Wide();
        bInterpolatePalettes = 1;
    }
    void TearDown() override
    {
        unsetenv("EXE_BASEFOLDER");
        SetUp();
    }
    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (u32 i = 0; i < list.rows.size(); i++)
            names.push_back(ToUtf8(PaletteName(list, i)));
        return names;
    }
    u32 AddFile(const char *pszName, const std::string &bytes)
    {
        folder.Write(pszName, bytes);
        AddPaletteRow(&list, folder.Wide(pszName));
        return static_cast<u32>(list.rows.size() - 1);
    }

    TempFolder folder;
    PaletteList list;
};

TEST_F(PaletteBrowserTest, TheStartIsTheGivenFolderOrTheProgramsPalettesOrAPartOfThePath)
{
    folder.Write("Mine/one.pal");
    const std::u16string mine = folder.Wide("Mine");
    EXPECT_EQ(mine, PaletteStartFolder(mine + u"/"));
    EXPECT_EQ(mine, PaletteStartFolder(folder.Wide() + u"\\mine\\")) << "either separator, and the case on the disk";
    EXPECT_EQ(mine, PaletteStartFolder(mine + u"/one.pal")) << "the program's folder is not known";
    SetVariable("EXE_BASEFOLDER", folder.Wide());
    EXPECT_EQ(folder.Wide("Palettes"), PaletteStartFolder(mine + u"/one.pal")) << "whether or not it exists";
    EXPECT_EQ(folder.Wide("Palettes"), PaletteStartFolder(u"/nowhere/at/all"));
    EXPECT_EQ(FromUtf8(fs::read_symlink("/proc/self/exe").parent_path().string()), PaletteStartFolder(u""));
    EXPECT_EQ(u"/", PaletteStartFolder(u"/"));
}

TEST_F(PaletteBrowserTest, EveryNameThatHoldsPalOrColGetsARowAndNoneIsRead)
{
    for (const char *pszName : {"z.pal", "x.palette", "A.PAL", "b.Color.txt", "\xD7\x90.pal", "line\nbreak.col"})
        folder.Write(pszName, Full(3));
    for (const char *pszName : {"pal", "x.pa", "palette.txt", "col.x", "no\xFFutf8.pal", "back\\slash.pal"})
        folder.Write(pszName);
    fs::create_directory(folder / "folder.pal");
    ASSERT_EQ(0, mkfifo((folder / "pipe.pal").c_str(), 0600));
    EXPECT_EQ(8u, FillPaletteList(&list));
    const std::vector<std::string> expected = {"A.PAL",    "b.Color.txt", "folder.pal", "line\nbreak.col",
                                               "pipe.pal", "x.palette",   "z.pal",      "\xD7\x90.pal"};
    EXPECT_EQ(expected, Names());
    EXPECT_TRUE(list.entries.empty());
    EXPECT_EQ(folder.Wide("A.PAL"), PalettePath(list, 0));
}

TEST_F(PaletteBrowserTest, AFolderThatIsGoneAddsNothing)
{
    AddFile("one.pal", Full(1));
    for (const std::u16string &gone : {folder.Wide("gone"), folder.Wide("one.pal"), std::u16string()}) {
        szPaletteFolder = gone;
        EXPECT_EQ(0u, FillPaletteList(&list));
        EXPECT_EQ(1u, list.rows.size());
    }
    szPaletteFolder = folder.Wide();
    EXPECT_EQ(1u, FillPaletteList(&list));
    EXPECT_EQ(2u, list.rows.size()) << "what was there stays";
}

TEST_F(PaletteBrowserTest, AHugeFolderIsWalkedInPiecesAndComesOutSorted)
{
    std::mt19937 random(7);
    std::set<std::string> names;
    while (names.size() < 10000)
        names.insert(std::to_string(random()) + ".pal");
    for (const std::string &sName : names)
        folder.Write(sName, "");
    PaletteWalk walk(&list);
    u32 nPieces = 1;
    while (walk.Look(0))
        nPieces++;
    EXPECT_GT(nPieces, 100u);
    EXPECT_TRUE(list.rows.empty());
    EXPECT_EQ(10000u, walk.Finish());
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.end()), Names());
}

TEST_F(PaletteBrowserTest, ARowIsReadWhenItIsPaintedAndTriedAgainUntilThatWorks)
{
    const u32 iRow = AddFile("late.pal", "");
    EXPECT_TRUE(PaletteStrip(&list, iRow).empty());
    fs::remove(folder / "late.pal");
    EXPECT_TRUE(PaletteStrip(&list, iRow).empty());
    folder.Write("late.pal", Full(5));
    bInterpolatePalettes = 0;
    EXPECT_EQ(5u, PaletteStrip(&list, iRow).size());
    folder.Write("late.pal", Full(6));
    EXPECT_EQ(5u, PaletteStrip(&list, iRow).size()) << "read once";
    EmptyPaletteList(&list);
    EXPECT_TRUE(list.rows.empty() && list.entries.empty());
}

TEST_F(PaletteBrowserTest, WhatIsNoPaletteIsAnEmptyStripAndNobodyWaits)
{
    for (const i32 nBytes : {0, 3, 767, 769})
        AddFile(("bytes" + std::to_string(nBytes) + ".pal").c_str(), std::string(static_cast<size_t>(nBytes), 'x'));
    AddFile("none.pal", Full(0));
    AddFile("huge.pal", "x");
    fs::resize_file(folder / "huge.pal", u64{1} << 32);
    fs::create_directory(folder / "folder.pal");
    fs::create_symlink("/dev/zero", folder / "device.pal");
    fs::create_symlink("itself.pal", folder / "itself.pal");
    ASSERT_EQ(0, mkfifo((folder / "pipe.pal").c_str(), 0600));
    for (const char *pszName : {"folder.pal", "device.pal", "itself.pal", "pipe.pal", "gone.pal"})
        AddPaletteRow(&list, folder.Wide(pszName));
    AddPaletteRow(&list, u"");
    for (u32 i = 0; i < list.rows.size(); i++)
        EXPECT_TRUE(PaletteStrip(&list, i).empty()) << Names()[i];
    EXPECT_TRUE(list.entries.empty());
}

TEST_F(PaletteBrowserTest, AStripHasTheColorsAsTheyAreOrResampled)
{
    for (const i32 n : {1, 2, 236, 2048}) {
        const u32 iRow = AddFile((std::to_string(n) + ".pal").c_str(), Full(n));
        u8 aab[3][PALETTE_COLORS_MAX] = {};
        for (u32 i = 0; i < static_cast<u32>(n); i++)
            for (u32 iGun = 0; iGun < 3; iGun++)
                aab[iGun][i] = static_cast<u8>(i * (iGun + 1));
        for (u8 *pGun : aab)
            ASSERT_TRUE(n == PALETTE_COLORS_MAX || InterpolatePalette(pGun, n));
        const std::vector<u32> smooth = PaletteStrip(&list, iRow);
        ASSERT_EQ(PALETTE_COLORS_MAX, smooth.size());
        for (u32 i = 0; i < smooth.size(); i++)
            ASSERT_EQ(0xFF000000u | static_cast<u32>(aab[0][i] << 16 | aab[1][i] << 8 | aab[2][i]), smooth[i]) << i;
        bInterpolatePalettes = 0;
        const std::vector<u32> plain = PaletteStrip(&list, iRow);
        ASSERT_EQ(static_cast<size_t>(n), plain.size()) << "what is kept is what was read";
        for (u32 i = 0; i < plain.size(); i++)
            ASSERT_EQ(FullPixel(i), plain[i]) << i;
        bInterpolatePalettes = 1;
    }
}

TEST_F(PaletteBrowserTest, TheResultIsAFolderWithNamesOrOnePath)
{
    for (const char *pszName : {"a.pal", "b & c.pal", "d.pal", "e\n.pal"})
        AddPaletteRow(&list, folder.Wide(pszName));
    const std::vector<u32> rows = {0, 1, 3};
    const std::u16string result = PaletteResult(list, rows, 1);
    EXPECT_EQ(folder.Wide() + u"\0a.pal\0b & c.pal\0e\n.pal\0\0"s, result);
    const std::vector<std::u16string> paths = {PalettePath(list, 0), PalettePath(list, 1), PalettePath(list, 3)};
    EXPECT_EQ(paths, PathsOfPaletteResult(result));
    EXPECT_EQ(folder.Wide("d.pal"), PaletteResult(list, std::vector<u32>{2}, 0));
    EXPECT_EQ(std::vector{folder.Wide("d.pal")}, PathsOfPaletteResult(folder.Wide("d.pal")));
    EXPECT_EQ(std::vector{folder.Wide("d.pal")}, PathsOfPaletteResult(PaletteResult(list, std::vector<u32>{2}, 1)));
    EXPECT_EQ(u"", PaletteResult(list, {}, 1));
    EXPECT_TRUE(PathsOfPaletteResult(u"").empty());
    EXPECT_EQ(std::vector{u"/a/b"s}, PathsOfPaletteResult(u"/a\0b"s)) << "without its last zeros";
}

TEST_F(PaletteBrowserTest, FilesTakeThePlaceOfTheListWhateverTheyAreCalled)
{
    AddFile("old.pal", Full(2));
    PaletteStrip(&list, 0);
    ListPaletteFiles(&list, std::vector{folder.Wide("one/a.txt"), folder.Wide("two/b.pal"), folder.Wide("one/dir/")});
    EXPECT_EQ((std::vector<std::string>{"a.txt", "b.pal", "dir"}), Names());
    EXPECT_TRUE(list.entries.empty());
    EXPECT_EQ(folder.Wide("one"), szPaletteFolder);
    EXPECT_EQ(folder.Wide("two/b.pal"), PalettePath(list, 1));
    ListPaletteFiles(&list, std::vector<std::u16string>{u"/x.pal"});
    EXPECT_EQ(u"/", szPaletteFolder);
    EXPECT_EQ(std::vector<std::u16string>{u"/x.pal"},
              PathsOfPaletteResult(PaletteResult(list, std::vector<u32>{0}, 1)));
    ListPaletteFiles(&list, {});
    EXPECT_TRUE(list.rows.empty() && szPaletteFolder.empty());
}

TEST_F(PaletteBrowserTest, TheColumnsShareTheWidthAndNeverExceedIt)
{
    EXPECT_EQ(150, PaletteColumnsOf(1000).nName);
    EXPECT_EQ(850, PaletteColumnsOf(1000).nPalette);
    for (i32 n = 0; n < 300; n++)
        EXPECT_LE(PaletteColumnsOf(n).nName + PaletteColumnsOf(n).nPalette, n);
}

} // namespace
