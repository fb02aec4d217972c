// FilePanels_qt_test.cpp -- the panels of tiles and of file lists over a running preset: clicks, keys, choosers
#include "controls/panels/FileListBox_qt.h"
#include "controls/panels/PanelHost_qt.h"
#include "controls/panels/Panel_qt.h"
#include "controls/panels/TileGridView_qt.h"
#include "editing/TreeFollower.h"
#include "engine/PresetDocument.h"
#include "platform/Notices.h"
#include "tests/TempFolder.h"
#include "tests/TreeFixture.h"
#include "toolkit/DarkStyle_qt.h"
#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"
#include "tests/WindowFixture.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <filesystem>

namespace {

constexpr size_t FILES = 0, TILES = 1;

class FilePanelsTest : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        InitFolders({(data.Wide() + u"/vorticade"), data.Wide(), FromUtf8(TEST_MODULE_FOLDER)});
        FollowPreset(tree);
        RecorderBehaviour rb = {};
        rb.nControls = 2;
        rb.adwType[FILES] = CONTROLTYPE_FILESELECT;
        rb.adwType[TILES] = CONTROLTYPE_TILE;
        Behave(nullptr, rb);
        MakePreset(1);
        pms = Add(MODULEINDEX_DRAWFULL);
        SwitchPreset([](const void *pv) { return static_cast<PresetState *>(const_cast<void *>(pv)); }, lppsi);
        BuildPresetTree(tree, lppsi);
        for (size_t i : {FILES, TILES})
            pms->apControl[i]->Base.dwSourceMask = FLUIDSOURCE_FIXED;
        pOwner = std::make_unique<QWidget>();
        pOwner->show();
        pHost = std::make_unique<PanelHost>(&tree, pOwner.get());
        Settle();
    }
    void TearDown() override
    {
        pHost.reset();
        pOwner.reset();
        Behave(nullptr, {});
        Leave();
        UnfollowPreset(tree);
        QApplication::processEvents();
        TreeTest::TearDown();
    }
    // The preset gives way to none.
    void Leave()
    {
        SwitchPreset([](const void *) -> PresetState * { return nullptr; }, nullptr);
        lppsi = nullptr;
    }
    Panel *Open(size_t iControl)
    {
        TreeNode *pNode = NodeOf(pms->apControl[iControl]);
        pHost->BringPanel(pNode);
        pPanel = PanelOf(pNode);
        EXPECT_TRUE(QTest::qWaitForWindowActive(pPanel));
        Settle();
        return pPanel;
    }
    // No mark, no reset.
    void Settle()
    {
        SetPresetChanged(u"Test.vd", 0);
        pms->bResetPending = 0;
    }
    // What an edit left: "m" marked, "r" its module starts over.
    std::string Ending()
    {
        const std::string s = std::string(bPresetChanged ? "m" : "") + (pms->bResetPending ? "r" : "");
        Settle();
        return s;
    }
    const ControlFileSelect &File() const
    {
        return pms->apControl[FILES]->FileSelect;
    }
    std::u16string List() const
    {
        return File().pszFileList ? File().pszFileList : u"";
    }
    template <typename T> T *Child() const
    {
        for (QWidget *p : pPanel->findChildren<QWidget *>())
            if (auto *pFound = dynamic_cast<T *>(p))
                return pFound;
        return nullptr;
    }
    FileListBox *Box() const
    {
        return Child<FileListBox>();
    }
    TileGridView *Grid() const
    {
        return Child<TileGridView>();
    }
    u32 *Mask() const
    {
        return pms->apControl[TILES]->Tile.pTileMask;
    }
    void Click(const char *pszText)
    {
        for (auto *p : pPanel->findChildren<QAbstractButton *>())
            if (p->text() == QLatin1String(pszText))
                return QTest::mouseClick(p, Qt::LeftButton, {}, QPoint(8, p->height() / 2));
        ADD_FAILURE() << "no button " << pszText;
    }
    void FocusBox()
    {
        Box()->setFocus();
        Settle();
    }
    void Type(const char *pszText)
    {
        FocusBox();
        QTest::keyClick(Box(), Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(Box(), pszText);
    }
    // A list that has run for a while.
    void Run(const char16_t *pszList)
    {
        EditPlace place = PlaceOfControl(lppsi, pms->apControl[FILES]);
        RunPresetEdit(MakeFieldEdit(WriteText(place, EditField::FileList, pszList)));
        pms->apControl[FILES]->FileSelect.nCurrentLine = 3;
        CopyText(pms->apControl[FILES]->FileSelect.szCurrentFile, u"running");
        pms->apControl[FILES]->FileSelect.nLines = 4;
        Settle();
    }
    bool StartsOver() const
    {
        return File().nCurrentLine == 0 && File().szCurrentFile[0] == 0;
    }
    QFileDialog *Chooser() const
    {
        return pPanel->findChild<QFileDialog *>();
    }
    void Choose(const QStringList &names)
    {
        auto *pDialog = Chooser();
        ASSERT_TRUE(pDialog);
        Q_EMIT pDialog->filesSelected(names);
        pDialog->close();
    }

    TempFolder data;
    std::unique_ptr<QWidget> pOwner;
    std::unique_ptr<PanelHost> pHost;
    QPointer<Panel> pPanel;
    ModuleSlot *pms = nullptr;
};

TEST_F(FilePanelsTest, EachTileButtonChangesTheMaskAndMarksWithoutAReset)
{
    Open(TILES);
    Mask()[33] = 0;
    const auto expect = [&](const char *pszText, auto pfnTile) {
        Click(pszText);
        for (u32 i = 0; i < 32 * 32; i++)
            ASSERT_EQ(u32(pfnTile(i / 32, i % 32)), Mask()[i]) << pszText << i;
        EXPECT_EQ("m", Ending()) << pszText;
    };
    expect("Invert", [](u32 r, u32 c) { return r == 1 && c == 1; });
    expect("All On", [](u32, u32) { return 1; });
    expect("All On", [](u32, u32) { return 1; });
    expect("Checker", [](u32 r, u32 c) { return (r + c) % 2; });
    expect("Rows", [](u32 r, u32) { return r % 2; });
    expect("Columns", [](u32, u32 c) { return c % 2; });
    expect("All Off", [](u32, u32) { return 0; });
}

TEST_F(FilePanelsTest, AClickTurnsTheTileUnderItOverToTheVeryLastPixel)
{
    Open(TILES);
    const QSize size = Grid()->size();
    const auto click = [&](int x, int y, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(Grid(), button, {}, QPoint(x, y));
    };
    click(1, 0);
    click(size.width() - 1, size.height() - 1);
    click(size.width() - 1, 0, Qt::RightButton);
    for (u32 i = 0; i < 32 * 32; i++)
        ASSERT_EQ(i != 0 && i != 32 * 32 - 1, Mask()[i] != 0) << i;
    EXPECT_EQ("m", Ending());
    click(1, 0);
    EXPECT_EQ(1u, Mask()[0]);
    QMouseEvent outside(QEvent::MouseButtonPress, QPointF(-1, 5), QPointF(-1, 5), Qt::LeftButton, Qt::LeftButton, {});
    Settle();
    QApplication::sendEvent(Grid(), &outside);
    EXPECT_EQ("", Ending());
}

TEST_F(FilePanelsTest, KeysReachEachTileAndAScreenReaderHearsOfIt)
{
    Open(TILES);
    Grid()->setFocus();
    QAccessibleInterface *pVoice = QAccessible::queryAccessibleInterface(Grid());
    EXPECT_EQ("Tiles, row 1, column 1: on", pVoice->text(QAccessible::Name));
    for (int nKey : {Qt::Key_Up, Qt::Key_Right, Qt::Key_Right, Qt::Key_Down, Qt::Key_Left, Qt::Key_Space})
        QTest::keyClick(Grid(), static_cast<Qt::Key>(nKey));
    EXPECT_EQ(0u, Mask()[33]);
    EXPECT_EQ("m", Ending());
    EXPECT_EQ("Tiles, row 2, column 2: off", pVoice->text(QAccessible::Name));
    pVoice->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(1u, Mask()[33]);
    for (int nKey : {Qt::Key_End, Qt::Key_Space, Qt::Key_Home, Qt::Key_Space})
        QTest::keyClick(Grid(), static_cast<Qt::Key>(nKey));
    EXPECT_EQ(0u, Mask()[32 + 31]);
    EXPECT_EQ(0u, Mask()[32]);
}

TEST_F(FilePanelsTest, TheGridIsPaintedInTheUsersColoursAndFollowsThem)
{
    Open(TILES);
    Mask()[0] = 0;
    pPanel->Refresh();
    const auto at = [&](u32 c) {
        const QImage image = Grid()->grab().toImage();
        const PixelBox box = TileBox(Grid()->Tiles(), {0, c}, image.width(), image.height());
        return u32(image.pixel(box.x + box.nWidth / 2, box.y + box.nHeight / 2));
    };
    EXPECT_EQ(PixelOfColor(UIColorTable[UICOLOR_TILE_OFF].dwColor), at(0));
    EXPECT_EQ(PixelOfColor(UIColorTable[UICOLOR_TILE_ON].dwColor), at(1));
    SetUIColor(UICOLOR_TILE_ON, 0x123456);
    EXPECT_EQ(PixelOfColor(0x123456), at(1));
    SetDefaultUIColors();
}

TEST_F(FilePanelsTest, AGridOfHostileSizesNeitherPaintsNorWritesBeyondTheMask)
{
    ControlTile &Tile = pms->apControl[TILES]->Tile;
    Open(TILES);
    for (auto [nColumns, nRows] : {std::pair{0u, 0u}, {1u, 1u}, {4096u, 4096u}, {1024u, 4096u}, {3u, ALL_ONES}}) {
        Tile.nXTiles = nColumns;
        Tile.nYTiles = nRows;
        Grid()->grab();
        Click("Invert");
        QTest::mouseClick(Grid(), Qt::LeftButton, {}, Grid()->rect().bottomRight());
        QTest::keyClick(Grid(), Qt::Key_End);
        QTest::keyClick(Grid(), Qt::Key_Space);
    }
    Tile.nXTiles = Tile.nYTiles = 32;
}

TEST_F(FilePanelsTest, EachLossOfTheFocusTakesTheListOverChangedOrNot)
{
    Run(u"a\r\nb\r\n\r\nc");
    Open(FILES);
    FocusBox();
    Click("Pin");
    EXPECT_EQ(u"a\r\nb\r\n\r\nc", List());
    EXPECT_TRUE(StartsOver());
    EXPECT_EQ(ALL_ONES, File().nLines);
    EXPECT_EQ("m", Ending());
    Type("\rno file & <b>");
    EXPECT_EQ(u"a\r\nb\r\n\r\nc", List()) << "not while it is typed";
    QWidget other;
    other.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_EQ(u"a\r\nb\r\n\r\nc\r\nno file & <b>", List()) << "to another window";
    EXPECT_EQ("m", Ending());
}

TEST_F(FilePanelsTest, TheBoxsOwnMenuTakesNothingOver)
{
    Run(u"a");
    Open(FILES);
    Type("b");
    QFocusEvent menu(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(Box(), &menu);
    EXPECT_EQ(u"a", List());
    EXPECT_EQ("", Ending());
}

TEST_F(FilePanelsTest, ClosingTakesTheListOverAndTheEndOfItsNodeDoesNot)
{
    Run(u"a");
    Open(FILES);
    Type("b");
    pPanel->ClosePanel();
    EXPECT_EQ(u"ab", List());
    EXPECT_EQ("m", Ending());
    Open(FILES);
    pPanel->ClosePanel();
    EXPECT_TRUE(StartsOver());
    EXPECT_EQ("m", Ending()) << "unchanged, and without the focus";
    Open(FILES);
    Type("c");
    QPointer<FileListBox> pBox = Box();
    RunTreeCommand(tree, NodeOf(pms), TreeCommand::Remove);
    EXPECT_FALSE(pPanel && pPanel->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(pBox) << "the module went while its list was typed";
}

TEST_F(FilePanelsTest, ARefreshShowsTheRecordButKeepsWhatIsBeingTyped)
{
    Run(u"a\nb");
    Open(FILES);
    Run(u"other\r\n");
    FocusBox();
    PanelRefresh.Tell();
    EXPECT_EQ(u"other\r\n", Box()->List()) << "nothing typed yet";
    Type("typing");
    Run(u"a third");
    PanelRefresh.Tell();
    EXPECT_EQ(u"other\r\ntyping", Box()->List());
    Click("Pin");
    EXPECT_EQ(u"other\r\ntyping", List());
    Run(u"a fourth");
    PanelRefresh.Tell();
    EXPECT_EQ(u"a fourth", Box()->List());
}

TEST_F(FilePanelsTest, ClearListEmptiesAllButTheNumberOfLines)
{
    Open(FILES);
    Run(u"a\r\nb");
    PanelRefresh.Tell();
    Click("Clear List");
    EXPECT_EQ(nullptr, File().pszFileList);
    EXPECT_EQ(nullptr, File().pLineOffsets);
    EXPECT_TRUE(StartsOver());
    EXPECT_EQ(4u, File().nLines);
    EXPECT_EQ(u"", Box()->List());
    EXPECT_EQ("m", Ending());
}

TEST_F(FilePanelsTest, ShuffleIsWrittenAndRead)
{
    Open(FILES);
    Click("Shuffle");
    EXPECT_EQ(1u, File().bShuffle);
    EXPECT_EQ("m", Ending());
    pms->apControl[FILES]->FileSelect.bShuffle = 0;
    PanelRefresh.Tell();
    Click("Shuffle");
    EXPECT_EQ(1u, File().bShuffle);
}

TEST_F(FilePanelsTest, AddedFilesStandBehindWhatIsInTheBoxAndResetTheModule)
{
    data.Write("Images/in.png");
    Run(u"a");
    Open(FILES);
    Type("\runsaved");
    Click("Add Files...");
    ASSERT_TRUE(Chooser());
    EXPECT_EQ("Open Image", Chooser()->windowTitle());
    EXPECT_EQ(QFileDialog::ExistingFiles, Chooser()->fileMode());
    EXPECT_EQ(data.string() + "/Images", Chooser()->directory().path().toStdString());
    EXPECT_EQ("Pictures", Chooser()->selectedNameFilter());
    EXPECT_EQ(8, Chooser()->nameFilters().size());
    EXPECT_TRUE(Chooser()->nameFilters()[1].endsWith("(*.jpg *.jpeg)"));
    Settle();
    Choose({QString::fromStdString(data.string() + "/Images/in.png")});
    EXPECT_EQ(u"a\r\nunsaved\r\nin.png\r\n", List());
    EXPECT_EQ(List(), Box()->List());
    EXPECT_TRUE(StartsOver());
    EXPECT_EQ(ALL_ONES, File().nLines);
    EXPECT_EQ("mr", Ending());

    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    pms->apControl[FILES]->Base.dwSourceMask |= FLUIDSOURCE_WAVE;
    Click("Add Files...");
    Settle();
    DismissNotices();
    Choose({"/elsewhere/1.png", "/elsewhere/2\n.png", "/elsewhere/3.png"});
    EXPECT_EQ(u"a\r\nunsaved\r\nin.png\r\n/elsewhere/1.png\r\n/elsewhere/3.png\r\n", List());
    EXPECT_EQ("m", Ending()) << "a control with animated sources resets nothing";
    EXPECT_EQ("1 file was left out of the list: a name with a line break in it would become two lines.\n",
              NoticeText());
    DismissNotices();
}

TEST_F(FilePanelsTest, ACancelledChooserChangesNothing)
{
    Run(u"a");
    Open(FILES);
    Click("Add Files...");
    Run(u"a");
    Chooser()->reject();
    EXPECT_EQ(u"a", List());
    EXPECT_FALSE(StartsOver());
    EXPECT_EQ("", Ending());
}

TEST_F(FilePanelsTest, EachTypeHasItsChooser)
{
    const auto open = [&](const char16_t *pszType) {
        pms->apControl[FILES]->FileSelect.pszFileType = pszType;
        Open(FILES);
        Click("Add Files...");
        const QList<QDialog *> dialogs = pPanel->findChildren<QDialog *>(Qt::FindDirectChildrenOnly);
        EXPECT_EQ(1, dialogs.size());
        std::string s = dialogs.value(0)->windowTitle().toStdString();
        if (const QFileDialog *pFile = Chooser())
            s += " " + pFile->directory().dirName().toStdString() + " " + pFile->nameFilters().join('|').toStdString();
        pPanel->ClosePanel();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return s;
    };
    std::filesystem::create_directories(data / "Shaders");
    std::filesystem::create_directories(data / "ShaderToy/Playlists");
    EXPECT_EQ("Palette Browser", open(u"*.PAL"));
    EXPECT_EQ("Open Shaders Shaders (*.glsl *.txt)", open(u"Shaders\t*.glsl;*.txt\t\t"));
    EXPECT_EQ("Open Playlists *.playlist Files (*.playlist)", open(u"*.playlist"));
    EXPECT_EQ("Open " + (data / "").parent_path().filename().string() + " All Files (*.*) (*)", open(nullptr));
}

TEST_F(FilePanelsTest, ASwitchOfThePresetClosesTheChooserAndWritesNothing)
{
    Run(u"a");
    Open(FILES);
    Type("b");
    Click("Add Files...");
    QPointer<QFileDialog> pDialog = Chooser();
    ASSERT_TRUE(pDialog);
    Leave();
    if (pDialog)
        Q_EMIT pDialog->filesSelected({"/elsewhere/1.png", "/elsewhere/2.png"});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(pDialog);
    EXPECT_FALSE(pPanel);
}

TEST_F(FilePanelsTest, TheEditorIsStartedFromWhereItIsOrFromTheProgramsFolder)
{
    data.Write("Own Tool.exe", "#!/bin/sh\necho $# >\"${0%/*}/started\"\n");
    std::filesystem::permissions(data / "Own Tool.exe", std::filesystem::perms::owner_all);
    Open(FILES);
    const auto button = [&] {
        for (auto *p : pPanel->findChildren<QPushButton *>())
            if (p->text() == "Edit/Create...")
                return p;
        return static_cast<QPushButton *>(nullptr);
    };
    EXPECT_FALSE(button()->isEnabled());
    for (const std::u16string &editor : {std::u16string(u"Own Tool.exe"), data.Wide("Own Tool.exe")}) {
        pms->apControl[FILES]->FileSelect.pszEditor = editor.c_str();
        PanelRefresh.Tell();
        EXPECT_TRUE(button()->isEnabled());
        Click("Edit/Create...");
        EXPECT_TRUE(QTest::qWaitFor([&] { return data.Read("started") == "0\n"; })) << "without arguments";
        std::filesystem::remove(data / "started");
    }
    pms->apControl[FILES]->FileSelect.pszEditor = u"No Such Tool.exe";
    Click("Edit/Create...");
    EXPECT_EQ(1u, QApplication::topLevelWidgets().count(pPanel)) << "silence";
    pms->apControl[FILES]->FileSelect.pszEditor = nullptr;
}

// The box alone

class FileListBoxTest : public testing::Test {
  protected:
    void SetUp() override
    {
        box.resize(400, 300);
        box.show();
        box.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&box));
    }
    // Until the text is loaded; the longest that one turn of the event loop took.
    i64 Load()
    {
        i64 nLongest = 0;
        for (QElapsedTimer timer; box.isReadOnly(); nLongest = std::max<i64>(nLongest, timer.elapsed())) {
            timer.start();
            QApplication::processEvents();
        }
        return nLongest;
    }
    static std::u16string Repeat(const std::u16string &s, size_t nChars)
    {
        std::u16string list;
        while (list.size() + s.size() <= nChars)
            list += s;
        return list;
    }
    void Paste(const std::u16string &text)
    {
        QApplication::clipboard()->setText(QString::fromStdU16String(text));
        box.paste();
    }

    FileListBox box;
};

TEST_F(FileListBoxTest, AFullListLoadsInStepsAndComesBackWhole)
{
    const std::u16string list = Repeat(u"/home/somebody/pictures/of a journey/0001.png\r\n", FILE_LIST_CHARS);
    box.SetList(list);
    EXPECT_TRUE(box.isReadOnly());
    EXPECT_TRUE(box.List() == list) << "also while it is loading";
    const i64 nLongest = Load();
    RecordProperty("LongestStepMs", static_cast<int>(nLongest));
    EXPECT_LT(nLongest, 1000);
    EXPECT_TRUE(box.List() == list);
    EXPECT_FALSE(box.document()->isModified());
}

TEST_F(FileListBoxTest, LongLinesAreLaidOutInPiecesAndStayOneLine)
{
    const std::u16string longLine = Repeat(u"0123456789\u4E2D\U0001F600", 100000);
    const std::u16string list = longLine + u"\r\n" + longLine + u"\r\nshort\r\n\r\n" + longLine;
    box.SetList(list);
    Load();
    EXPECT_TRUE(box.List() == list);
    QTest::keyClicks(&box, "x\r");
    EXPECT_TRUE(box.List() == u"x\r\n" + list);
    QTest::keyClick(&box, Qt::Key_Down);
    QTest::keyClick(&box, Qt::Key_Home);
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(list.size() + 5, box.List().size()) << "one break between two pieces";
    QTest::keyClick(&box, Qt::Key_Backspace);
    EXPECT_TRUE(box.List() == u"x\r\n" + list);
    QTest::keyClick(&box, Qt::Key_Right);
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(list.size() + 5, box.List().size());
    QTest::keyClick(&box, Qt::Key_Backspace);
    EXPECT_TRUE(box.List() == u"x\r\n" + list) << "and within one";
    box.SetList(u"");
    Paste(longLine);
    QTest::keyClicks(&box, "\rend");
    EXPECT_TRUE(box.List() == longLine + u"\r\nend");
}

TEST_F(FileListBoxTest, WhatGoesBeyondTheLimitIsDropped)
{
    FileListBox small(20);
    small.SetList(u"0123456789");
    small.moveCursor(QTextCursor::End);
    QApplication::clipboard()->setText("12\n56\r\n90abc");
    small.paste();
    EXPECT_EQ(u"012345678912\r\n56\r\n90", small.List());
    QTest::keyClicks(&small, "no\r");
    EXPECT_EQ(u"012345678912\r\n56\r\n90", small.List());
    QTest::keyClick(&small, Qt::Key_Backspace);
    QTest::keyClicks(&small, "y");
    EXPECT_EQ(u"012345678912\r\n56\r\n9y", small.List());
    small.SetList(u"what a file holds beyond it stays");
    EXPECT_EQ(u"what a file holds beyond it stays", small.List());
}

TEST_F(FileListBoxTest, SpecialCharactersComeBackAndTypingCanBeUndone)
{
    box.SetList(u"a\u00A0b\u2028c\rd\r\n");
    EXPECT_EQ(u"a\u00A0b\u2028c\r\nd\r\n", box.List());
    QTest::keyClicks(&box, "x");
    EXPECT_TRUE(box.IsBeingTyped());
    box.undo();
    EXPECT_EQ(u"a\u00A0b\u2028c\r\nd\r\n", box.List());
    Paste(std::u16string(u"p\0q", 3));
    EXPECT_EQ(u"pqa\u00A0b\u2028c\r\nd\r\n", box.List()) << "nothing ends the list early";
}

} // namespace

int main(int argc, char **argv)
{
    return RunDarkWindowTests(argc, argv);
}
