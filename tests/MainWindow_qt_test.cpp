// MainWindow_qt_test.cpp -- tests MainWindow_qt.cpp, its boxes and the menus of its tree, over presets in files
#include "mainwindow/MainWindow_qt.h"

#include "controls/ControlManager.h"
#include "editing/PresetTreeView_qt.h"
#include "engine/PresetDocument.h"
#include "output/Overlays.h"
#include "tests/EngineFixture.h"
#include "tests/TempFolder.h"
#include "tests/WindowFixture.h"
#include "toolkit/DialogScaling_qt.h"
#include "toolkit/UIColors.h"

#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>
#include <QWindow>

namespace {

u32 nExits = 0;

class MainWindowTest : public EngineTest {
  protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        SetDefaultUIColors();
        InitFolders({u"/nowhere/vorticade", folder.Wide(), FromUtf8(TEST_MODULE_FOLDER)});
        for (const char *pszName : {"One.VD", "Two.VD", "a [*] & <b>b.VD"})
            folder.Write(std::string("Presets/") + pszName,
                         "<?xml?>\n<Preset><NumPlanes>2</NumPlanes><Plane0></Plane0><Plane1></Plane1></Preset>");
        folder.Write("Presets/Broken.VD", "this is no preset");
        OpenFirstPreset(u"One.VD", nullptr, nullptr);
        nExits = 0;
        pWindow = std::make_unique<MainWindow>([] { nExits++; });
        pTree = dynamic_cast<PresetTreeView *>(pWindow->findChild<QTreeView *>());
        ASSERT_NE(nullptr, pTree);
        pWindow->show();
        pWindow->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(pWindow.get()));
    }
    void TearDown() override
    {
        pWindow.reset();
        SwitchPreset(nullptr, nullptr);
        bPresetChanged = 0;
        EngineTest::TearDown();
    }

    std::string Title() const
    {
        return pWindow->windowHandle()->title().toStdString(); // as it is shown
    }
    std::string RootText() const
    {
        return pTree->model()->index(0, 0).data().toString().toStdString();
    }
    // What is open over the window of the kind; null: none.
    template <typename Dialog> Dialog *Open() const
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Dialog *pOpen = nullptr;
        for (Dialog *pDialog : pWindow->findChildren<Dialog *>()) {
            EXPECT_EQ(nullptr, pOpen) << "two at once";
            pOpen = pDialog;
        }
        return pOpen;
    }
    QMessageBox *Box() const
    {
        return Open<QMessageBox>();
    }
    void Answer(QMessageBox::StandardButton eButton) const
    {
        QMessageBox *pBox = Box();
        ASSERT_TRUE(pBox && pBox->button(eButton));
        pBox->button(eButton)->click();
        EXPECT_EQ(nullptr, Box());
    }
    void Choose(const std::u16string &path) const
    {
        auto *pChooser = Open<QFileDialog>();
        ASSERT_NE(nullptr, pChooser);
        pChooser->selectFile(QString::fromStdU16String(path));
        static_cast<QDialog *>(pChooser)->accept();
    }
    using Entries = QList<std::pair<QString, QAction *>>; // those of sub menus too, without keys
    static Entries ListEntries(const QList<QAction *> &actions)
    {
        Entries entries;
        for (QAction *pAction : actions) {
            entries += {pAction->text().section('\t', 0, 0), pAction};
            if (pAction->menu())
                entries += ListEntries(pAction->menu()->actions());
        }
        return entries;
    }
    static QAction *Find(const QWidget *pMenu, const char *pszText)
    {
        for (const auto &[text, pAction] : ListEntries(pMenu->actions()))
            if (text == QLatin1String(pszText))
                return pAction;
        ADD_FAILURE() << pszText;
        return nullptr;
    }
    QAction *Entry(const char *pszText) const
    {
        return Find(pWindow->findChild<QMenuBar *>(), pszText);
    }
    QToolButton *Button(const QString &name) const
    {
        for (QToolButton *pButton : pWindow->findChildren<QToolButton *>())
            if (pButton->accessibleName() == name)
                return pButton;
        ADD_FAILURE() << qPrintable(name);
        return nullptr;
    }
    // Opens the menu of a row with the right button.
    QMenu *OpenTreeMenu(const QModelIndex &index) const
    {
        const QPoint place = pTree->viewport()->mapTo(pWindow.get(), pTree->visualRect(index).center());
        QTest::mouseClick(pWindow->windowHandle(), Qt::RightButton, {}, place);
        auto *pMenu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        EXPECT_NE(nullptr, pMenu);
        return pMenu;
    }
    QModelIndex PlanesIndex() const
    {
        return pTree->model()->index(0, 0, pTree->model()->index(0, 0));
    }
    QModelIndex PlaneIndex(int n) const
    {
        return pTree->model()->index(n, 0, PlanesIndex());
    }

    TempFolder folder;
    std::unique_ptr<MainWindow> pWindow;
    PresetTreeView *pTree = nullptr;
};

// Menus and buttons

TEST_F(MainWindowTest, TheMenuBarHasItsEntriesInTheirOrderAndRunsThem)
{
    QStringList texts;
    for (const auto &[text, pAction] : ListEntries(pWindow->findChild<QMenuBar *>()->actions()))
        texts += text;
    EXPECT_EQ("&File|&New|Open|&Save|Save as...|&Exit|Settings|Performance Options...|User Interface Options...|"
              "Recording Options...|&View|Visuals Window|Display frame rate|Display backbuffer metrics|Display preset "
              "name|Display keyboard commands|Color Monitor...|Sound Monitor...|Preset Browser...|Palette Editor...|"
              "Shader Editor...|&Move/Size Windows Together|Window &Snap-to-Edge|Window Layouts|Load Layout|Save "
              "Layout|&Help|&Check for Updates|&License|&About...",
              texts.join('|').toStdString());
    const u32 bShown = asOverlay[OVERLAY_FRAME_RATE].bShown;
    QAction *pRate = Entry("Display frame rate");
    for (const u32 bWanted : {!bShown, bShown != 0}) {
        pRate->trigger();
        EXPECT_EQ(bWanted, asOverlay[OVERLAY_FRAME_RATE].bShown != 0);
        EXPECT_EQ(bWanted != 0, pRate->isChecked());
    }
    QTest::keyClick(pWindow->windowHandle(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ("Tempname.VD - Vorticade", Title());
}

TEST_F(MainWindowTest, EveryToolButtonHasAPictureATipAndAName)
{
    QStringList texts;
    for (const QToolButton *pButton : pWindow->findChildren<QToolButton *>()) {
        if (pButton->objectName().startsWith("qt_"))
            continue; // the menu bar's own
        EXPECT_FALSE(pButton->icon().isNull()) << qPrintable(pButton->accessibleName());
        texts += (pButton->isVisible() ? "" : "hidden ") + pButton->accessibleName() + ": " + pButton->toolTip();
    }
    EXPECT_EQ("New: Begin New Preset|Open: Open a Preset File|Save As: Save to Preset File|hidden Update Available: "
              "Update Available|Shader Editor: Launch the GLSL Pixel Shader Editor|Palette Editor: Launch the Palette "
              "Editor|Colors Window: Display the Colors window|Preset Browser: Display the Preset Browser window|Sound "
              "Options: Current sound detection status. Press to launch Sound Options.",
              texts.join('|').toStdString());
}

// The document

TEST_F(MainWindowTest, TitleAndTreeFollowTheDocument)
{
    EXPECT_EQ("One.VD - Vorticade", Title());
    MarkPresetChanged();
    EXPECT_EQ("*One.VD - Vorticade", Title());
    EXPECT_EQ("*One.VD", RootText());
    SetPresetChanged(u"/some/folder/Other.VD", 0);
    EXPECT_EQ("Other.VD - Vorticade", Title());
    LoadPresetByName(u"a [*] & <b>b.VD");
    MarkPresetChanged();
    EXPECT_EQ("*a [*] & <b>b.VD - Vorticade", Title());
    EXPECT_EQ("*a [*] & <b>b.VD", RootText());
    EXPECT_FALSE(pWindow->isWindowModified());
    SetPresetChanged(u"[*][*].VD", 0);
    EXPECT_EQ("[*][*].VD - Vorticade", Title());
    pWindow->SelectRoot();
    LoadPresetByName(u"Broken.VD");
    EXPECT_EQ("Tempname.VD - Vorticade", Title());
    EXPECT_EQ(0, pTree->model()->rowCount());
    EXPECT_EQ(nullptr, pTree->SelectedNode());
    QTest::keyClick(pTree, Qt::Key_Delete);
    NewPreset();
    EXPECT_EQ("Tempname.VD", RootText());
    EXPECT_EQ(0, pTree->model()->rowCount(PlanesIndex()));
    LoadPresetByName(u"Two.VD");
    EXPECT_EQ(2, pTree->model()->rowCount(PlanesIndex()));
    EXPECT_EQ(nullptr, pTree->SelectedNode());
}

TEST_F(MainWindowTest, ClosingWithChangesAsksOnceAndOnlyYesEndsTheProgram)
{
    MarkPresetChanged();
    for (const auto eButton : {QMessageBox::No, QMessageBox::Cancel, QMessageBox::NoButton}) {
        pWindow->close();
        const QPointer<QMessageBox> pBox = Box();
        ASSERT_TRUE(pBox && pBox->isVisible());
        EXPECT_EQ("Warning: Unsaved changes", pBox->windowTitle());
        EXPECT_EQ("You've made changes to the current preset that have not been saved. If you proceed, those changes "
                  "will be lost.\n\nDo you wish to proceed?",
                  pBox->text());
        EXPECT_EQ(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, pBox->standardButtons());
        EXPECT_EQ(QMessageBox::Warning, pBox->icon());
        pWindow->close();
        EXPECT_EQ(pBox, Box()) << "one question is enough";
        if (eButton == QMessageBox::NoButton)
            QTest::keyClick(pBox.data(), Qt::Key_Escape);
        else
            Answer(eButton);
        EXPECT_EQ(nullptr, Box());
        EXPECT_TRUE(pWindow->isVisible() && nExits == 0);
        EXPECT_EQ("*One.VD - Vorticade", Title());
        EXPECT_EQ(2, CurrentPreset()->nPlanes);
    }
    pWindow->close();
    Answer(QMessageBox::Yes);
    EXPECT_EQ(1u, nExits);
    Entry("&Exit")->trigger();
    EXPECT_EQ(2u, nExits) << "without a question";
    EXPECT_EQ(nullptr, Box());
    SetPresetChanged(u"One.VD", 0);
    pWindow->close();
    EXPECT_EQ(3u, nExits);
    EXPECT_EQ(nullptr, Box());
    EXPECT_TRUE(pWindow->isVisible()) << "who ends the program takes it down";
}

TEST_F(MainWindowTest, NewAndOpenAskBeforeChangesAreLost)
{
    MarkPresetChanged();
    Button("New")->click();
    Answer(QMessageBox::No);
    EXPECT_EQ("*One.VD - Vorticade", Title());
    Entry("&New")->trigger();
    Answer(QMessageBox::Yes);
    EXPECT_EQ("Tempname.VD - Vorticade", Title());
    EXPECT_EQ(0, CurrentPreset()->nPlanes);
    MarkPresetChanged();
    Entry("Open")->trigger();
    EXPECT_EQ(nullptr, Open<QFileDialog>());
    Answer(QMessageBox::Yes);
    auto *pChooser = Open<QFileDialog>();
    ASSERT_NE(nullptr, pChooser);
    EXPECT_EQ("Open", pChooser->windowTitle());
    EXPECT_EQ(folder.string() + "/Presets", pChooser->directory().absolutePath().toStdString());
    Choose(folder.Wide("Presets/Two.VD"));
    EXPECT_EQ("Two.VD - Vorticade", Title());
    Button("Open")->click();
    EXPECT_EQ(nullptr, Box()) << "nothing to lose";
    Open<QFileDialog>()->reject();
    EXPECT_EQ("Two.VD - Vorticade", Title());
}

TEST_F(MainWindowTest, ThePresetIsSavedUnderTheChosenNameOrAnErrorIsShown)
{
    MarkPresetChanged();
    Entry("&Save")->trigger();
    ASSERT_NE(nullptr, Open<QFileDialog>());
    EXPECT_EQ("Save As", Open<QFileDialog>()->windowTitle());
    Choose(folder.Wide("Presets/Mine")); // the extension is added
    EXPECT_EQ("Mine.VD - Vorticade", Title());
    EXPECT_NE("", folder.Read("Presets/Mine.VD"));
    Entry("Save as...")->trigger();
    EXPECT_NE(nullptr, Open<QFileDialog>());
    LoadPresetByName(u"Broken.VD");
    EXPECT_EQ(nullptr, Open<QFileDialog>()) << "what was to be saved is gone";
    Button("Save As")->click();
    Choose(folder.Wide("Presets/Nothing.VD"));
    ASSERT_NE(nullptr, Box());
    EXPECT_EQ("Error", Box()->windowTitle());
    EXPECT_EQ("Error Saving File", Box()->text());
    EXPECT_EQ(QMessageBox::Critical, Box()->icon());
    Answer(QMessageBox::Ok);
    EXPECT_EQ("Tempname.VD - Vorticade", Title());
}

// The strip and the tree

u32 GiveLevel(void *, i32, f32 *pfLevel)
{
    *pfLevel = 0.5f;
    return 1;
}

TEST_F(MainWindowTest, TheStripFollowsTheShowAndTheSoundButtonTheSound)
{
    const auto picture = [this] { return Button("Sound Options")->icon().pixmap(24, 24).toImage(); };
    UseSystemClock();
    pWindow->StartStatus();
    const QImage quiet = picture();
    GlobalSettings.Monitor.pfnGetLevel = GiveLevel;
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture() != quiet; }));
    GlobalSettings.Monitor.pfnGetLevel = nullptr;
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture() == quiet; }));
    QStringList texts;
    const auto hasBuffer = [&] {
        texts.clear();
        for (const QLabel *pLabel : pWindow->findChildren<QLabel *>())
            texts += pLabel->text();
        return texts.contains("131 x 129");
    };
    EXPECT_TRUE(QTest::qWaitFor(hasBuffer));
    for (const char *pszCaption : {"FPS", "Buffer", "Window"})
        EXPECT_TRUE(texts.contains(pszCaption)) << pszCaption;
}

TEST_F(MainWindowTest, TheWheelTurnsTheTreeWhereverThePointerIs)
{
    pWindow->resize(310, 260);
    QCoreApplication::processEvents();
    const QPointF place = pWindow->rect().bottomRight() - QPoint(5, 5);
    const QScrollBar *pBar = pTree->verticalScrollBar();
    for (const int nDelta : {-120, 120}) {
        for (int i = 0; i < 60; i++) { // also beyond its ends
            QWheelEvent wheel(place, pWindow->mapToGlobal(place), {}, {0, nDelta}, Qt::NoButton, Qt::NoModifier,
                              Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(pWindow.get(), &wheel);
        }
        EXPECT_GT(pBar->maximum(), 0);
        EXPECT_EQ(nDelta < 0 ? pBar->maximum() : 0, pBar->value());
    }
}

TEST_F(MainWindowTest, TheWindowScalesInHeightAloneAndAButtonThatComesLaterFindsRoom)
{
    const QSize design = pWindow->size();
    const int nTree = pTree->height(), nMenu = pWindow->findChild<QMenuBar *>()->height();
    const QFont font = pTree->font();
    pWindow->resize(2 * design.width(), nMenu + 2 * (design.height() - nMenu));
    EXPECT_EQ(design.width(), pWindow->width());
    EXPECT_NEAR(2 * nTree, pTree->height(), 1);
    EXPECT_EQ(font, pTree->font());
    EXPECT_EQ(nMenu, pWindow->findChild<QMenuBar *>()->height());
    EXPECT_EQ(1u, ScaleInfoOf(pWindow.get())->bRawChildRects);
    const QToolButton *pBefore = Button("Save As"), *pBehind = Button("Shader Editor");
    QToolButton *pUpdate = Button("Update Available");
    pUpdate->show();
    EXPECT_LE(pBefore->geometry().right(), pUpdate->x());
    EXPECT_LE(pUpdate->geometry().right(), pBehind->x());
    pWindow->resize(design);
    EXPECT_EQ(nTree, pTree->height());
}

TEST_F(MainWindowTest, ANodesMenuRunsItsCommandsAndClosesWhenThePresetGoes)
{
    QPointer<QMenu> pMenu = OpenTreeMenu(PlaneIndex(1));
    ASSERT_TRUE(pMenu);
    EXPECT_EQ(nullptr, pTree->SelectedNode()) << "a right click selects nothing";
    LoadPresetByName(u"Two.VD");
    EXPECT_EQ(nullptr, QApplication::activePopupWidget());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(pMenu.isNull());

    pMenu = OpenTreeMenu(PlaneIndex(1));
    ASSERT_TRUE(pMenu);
    PlaneState *const pps = CurrentPreset()->psPlane[1];
    Find(pMenu, "Move Up")->trigger();
    pMenu->close();
    EXPECT_EQ(pps, CurrentPreset()->psPlane[0]);
    EXPECT_EQ("*Two.VD - Vorticade", Title());
    EXPECT_EQ("Plane 1", PlaneIndex(0).data().toString());

    pTree->setCurrentIndex(PlaneIndex(0));
    QTest::keyClick(pTree, Qt::Key_Delete);
    ASSERT_EQ(1, CurrentPreset()->nPlanes);
    EXPECT_NE(pps, CurrentPreset()->psPlane[0]);
    EXPECT_EQ(1, pTree->model()->rowCount(PlanesIndex()));
}

TEST_F(MainWindowTest, AMenuShowsForeignNamesAsTheyAre)
{
    constexpr char16_t szName[] = u"Salt & Pepper\tCtrl+N <b>";
    std::copy_n(szName, std::size(szName), const_cast<char16_t *>(FindModuleRecord(u"Idle.dll")->md.szName));
    pTree->expandAll();
    QModelIndex index = PlaneIndex(0);
    index = pTree->model()->index(0, 0, pTree->model()->index(1, 0, index)); // Drawing Modules, Full Draw
    QMenu *pMenu = OpenTreeMenu(index);
    ASSERT_NE(nullptr, pMenu);
    QAction *pAdd = Find(pMenu, "Salt && Pepper Ctrl+N <b>");
    ASSERT_NE(nullptr, pAdd);
    pAdd->trigger();
    pMenu->close();
    const PlaneState *pps = CurrentPreset()->psPlane[0];
    ASSERT_EQ(1, pps->anModules[MODULEINDEX_DRAWFULL]);
    EXPECT_EQ("Salt & Pepper Ctrl+N <b>", pTree->model()->index(0, 0, index).data().toString());
    EXPECT_FALSE(pTree->visualRect(pTree->model()->index(0, 0, index)).isEmpty()) << "it can be seen at once";
}

} // namespace

int main(int argc, char **argv)
{
    return RunWindowTests(argc, argv, "1");
}
