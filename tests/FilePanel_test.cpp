// FilePanel_test.cpp -- the panel of a file select without its window: choosers, filters, names, what is written
#include "controls/panels/FilePanel.h"

#include "tests/EngineFixture.h"
#include "tests/TempFolder.h"
#include "toolkit/FileFilter.h"

namespace {

class FilePanelTest : public testing::Test {
  protected:
    void SetUp() override
    {
        InitFolders({u"/nowhere/vorticade", data.Wide(), {}});
    }
    std::u16string Path(const char *pszName) const
    {
        return data.Wide() + u"/" + FromUtf8(pszName);
    }

    TempFolder data;
};

TEST_F(FilePanelTest, TheFirstWordThatTheTypeHoldsPicksTheChooser)
{
    const auto check = [](const char16_t *pszType, ListChooser eChooser, PathRow eFolder) {
        EXPECT_EQ(eChooser, ChooserOf(pszType).eChooser) << ToUtf8(pszType);
        EXPECT_EQ(eFolder, ChooserOf(pszType).eFolder) << ToUtf8(pszType);
    };
    check(u"Picture", ListChooser::Image, PATH_IMAGES);
    check(u"my pICTUREs and *.pal", ListChooser::Image, PATH_IMAGES);
    check(u"*.PAL;*.glsl", ListChooser::Palettes, PATH_PALETTES);
    check(u"Shaders\t*.glsl\t\t", ListChooser::Files, PATH_SHADERS);
    check(u"x.Playlist", ListChooser::Files, PATH_SHADERTOY_PLAYLISTS);
    check(u"*.txt", ListChooser::Files, PATH_PROGRAM);
    check(u"", ListChooser::Files, PATH_PROGRAM);
}

TEST_F(FilePanelTest, AFilterStandsAsItIsOnlyWithATabAndADoubleTab)
{
    EXPECT_EQ(u"Text\t*.txt\t\t", ListFilter(u"Text\t*.txt\t\t"));
    EXPECT_EQ(u"*.txt Files\t*.txt\t\t", ListFilter(u"*.txt"));
    EXPECT_EQ(u"a\tb Files\ta\tb\t\t", ListFilter(u"a\tb"));
    EXPECT_EQ(u"All Files (*.*)\t*.*\t\t", ListFilter(u""));
    const auto images = FileFilters(pszImageFilter, {});
    std::string names;
    for (const FileFilter &filter : images)
        names += ToUtf8(filter.sDescription) + "|";
    EXPECT_EQ("BMP (*.bmp,*.dib,*.rle)|JPEG (*.jpg,*.jpeg)|PNG (*.png)|GIF (*.gif)|TIFF (*.tiff,*.tif)|"
              "Animation (*.1)|Pictures|All files (*.*)|",
              names);
    EXPECT_EQ(u"Pictures", images[IMAGE_FILTER_FIRST].sDescription);
    for (size_t i = 0; i < IMAGE_FILTER_FIRST; i++)
        EXPECT_NE(images[IMAGE_FILTER_FIRST].sPattern.npos,
                  images[IMAGE_FILTER_FIRST].sPattern.find(images[i].sPattern));
}

TEST_F(FilePanelTest, ChosenFilesStandBehindTheListALineEach)
{
    data.Write("Images/in.png");
    const AddedFiles one = AddFilesToList(u"typed.png\r\n", {Path("Images/in.png")});
    EXPECT_EQ(u"typed.png\r\nin.png\r\n", one.sList);
    EXPECT_EQ(u"in.png\r\n", AddFilesToList(u"", {Path("Images/in.png")}).sList);
    const AddedFiles many = AddFilesToList(u"open", {u"/elsewhere/a.png", Path("b.pal"), u"/elsewhere/a.png"});
    EXPECT_EQ(u"open\r\n/elsewhere/a.png\r\nb.pal\r\n/elsewhere/a.png\r\n", many.sList) << "unended, unknown, twice";
    EXPECT_EQ(3u, many.nAdded);
    EXPECT_EQ("", LeftOutText(many));
    const AddedFiles missing = AddFilesToList(u"open", {Path("Images/no.png")});
    EXPECT_EQ(u"open", missing.sList) << "a single file has to exist";
    EXPECT_EQ(0u, missing.nAdded);
}

TEST_F(FilePanelTest, LongPathsStayWhole)
{
    const std::u16string folder = u"/" + std::u16string(300, u'd');
    const std::u16string path = folder + u"/a.png";
    EXPECT_EQ(path + u"\r\nb\r\na.png\r\n",
              AddFilesToList(u"", {path, Path("b"), data.Wide() + folder + u"/a.png"}).sList);
}

TEST_F(FilePanelTest, NamesThatWouldSplitALineOrOverflowTheListAreLeftOutAndTold)
{
    const AddedFiles broken = AddFilesToList(u"x", {u"/a\nb", u"/c", u"/d\re", u"/f\u2029g"});
    EXPECT_EQ(u"x\r\n/c\r\n", broken.sList);
    EXPECT_EQ("3 files were left out of the list: a name with a line break in it would become two lines.",
              LeftOutText(broken));
    const std::u16string full(FILE_LIST_CHARS - 6, u'x');
    const AddedFiles added = AddFilesToList(full, {u"/a", u"/bc", u"/d"});
    EXPECT_EQ(full + u"\r\n/a\r\n", added.sList);
    EXPECT_EQ(FILE_LIST_CHARS, added.sList.size());
    EXPECT_EQ("2 files were left out of the list: it is full.", LeftOutText(added));
    EXPECT_EQ(full, AddFilesToList(full, {u"/long", u"/longer"}).sList) << "nothing added, nothing changed";
}

TEST_F(FilePanelTest, LineBreaksOfAllKindsBecomeTheListsOwn)
{
    EXPECT_EQ(u"a\r\nb\r\n\r\nc\r\n\r\nd\te\u00A0\u2028\u4E2D\r\n",
              ListWithBreaks(std::u16string_view(u"a\r\nb\n\rc\u2029\nd\te\u00A0\u2028\u4E2D\0\r", 18)));
    EXPECT_EQ(u"", ListWithBreaks(u""));
}

TEST_F(FilePanelTest, AnEditorIsTriedAsNamedThenInTheProgramsFolder)
{
    ControlRecord ctl = {};
    ctl.Base.dwType = CONTROLTYPE_FILESELECT;
    EXPECT_EQ(u"", EditorOf(&ctl));
    EXPECT_TRUE(EditorPaths(EditorOf(&ctl)).empty());
    ctl.FileSelect.pszEditor = u"Tool.exe";
    EXPECT_EQ((std::vector<std::u16string>{u"Tool.exe", u"/nowhere/Tool.exe"}), EditorPaths(EditorOf(&ctl)));
    ctl.Base.dwType = CONTROLTYPE_TILE;
    EXPECT_EQ(u"", EditorOf(&ctl)) << "what stands there is no text";
    EXPECT_EQ(u"", FileTypeOf(nullptr));
}

TEST_F(FilePanelTest, AddedFilesResetAModuleOnlyWhereNothingAnimatesTheControl)
{
    ControlRecord ctl = {};
    ctl.Base.dwType = CONTROLTYPE_FILESELECT;
    const EditPlace module = ModulePlace(ListPlace(2, 3), 4);
    for (const u32 dwMask : {u32{FLUIDSOURCE_FIXED}, u32{FLUIDSOURCE_FIXED | FLUIDSOURCE_PERIODIC}}) {
        ctl.Base.dwSourceMask = dwMask;
        const auto writes = AddedListWrites(ControlPlace(module, 5), &ctl, u"a");
        ASSERT_EQ(dwMask == FLUIDSOURCE_FIXED ? 2u : 1u, writes.size());
        EXPECT_EQ(EditField::FileList, writes[0].eField);
        EXPECT_EQ(ControlPlace(module, 5), writes[0].place);
        EXPECT_EQ(u"a", writes[0].sText);
        if (writes.size() == 2) {
            EXPECT_EQ(EditField::ResetPending, writes[1].eField);
            EXPECT_EQ(module, writes[1].place);
            EXPECT_EQ(1, writes[1].nValue);
        }
    }
}

} // namespace
