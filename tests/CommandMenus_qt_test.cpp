// CommandMenus_qt_test.cpp -- tests CommandMenus_qt.cpp and Icons_qt.cpp with menus, bars and keys of a small table
#include "toolkit/CommandMenus_qt.h"

#include "toolkit/Icons_qt.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPointer>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <cstdlib>

namespace {

struct Show {
    std::u16string runs;
    bool bMaySave = true;
    bool bOnTop = false;
    std::vector<CommandItem> layouts;
};

Show *Of(void *pv)
{
    return static_cast<Show *>(pv);
}

void Note(u32 dwArgument, void *pv)
{
    Of(pv)->runs += static_cast<char16_t>(dwArgument);
}

bool MaySave(u32, void *pv)
{
    return Of(pv)->bMaySave;
}

// Refuses every second time, so that the mark and the toolkit's own idea of it come apart.
void FlipOnTop(u32, void *pv)
{
    Of(pv)->runs += u'f';
    if (Of(pv)->runs.size() % 2)
        Of(pv)->bOnTop = !Of(pv)->bOnTop;
}

void AddLayouts(std::vector<CommandItem> *pItems, u32, void *pv)
{
    *pItems = Of(pv)->layouts;
}

constexpr Command asLayouts[] = {{.pfnRun = Note, .pfnItems = AddLayouts}};
constexpr Command asFile[] = {
    {.pszText = u"&Save as...",
     .pfnRun = Note,
     .dwArgument = 's',
     .pfnEnabled = MaySave,
     .key = {'S', MODIFIER_CTRL},
     .pszToolTip = u"Save <i>to</i> Preset File",
     .pszIcon = "saveas"},
    COMMAND_LINE,
    {.pszText = u"On Top", .pfnRun = FlipOnTop, .pfnChecked = [](u32, void *pv) { return Of(pv)->bOnTop; }},
    {.pszText = u"Layouts", .children = asLayouts},
    {.pfnRun = Note, .dwArgument = 'p', .key = {.dwKey = KEY_PAGE_UP, .bRepeats = true}},
};
constexpr Command asView[] = {{.pszText = u"Go", .pfnRun = Note, .dwArgument = 'g', .key = {KEY_F1 + 4}}};
constexpr Command asBar[] = {{.pszText = u"&File", .children = asFile}, {.pszText = u"&View", .children = asView}};

class CommandMenus : public testing::Test {
  protected:
    CommandMenus()
    {
        window.resize(300, 200);
        window.show();
        window.activateWindow();
        QTest::qWait(0);
    }
    ~CommandMenus() override
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QMenu *OpenFile()
    {
        QMenu *pMenu = MakeCommandMenu({asFile, &show}, &window);
        pMenu->popup({20, 20});
        return pMenu;
    }
    static QAction *Find(const QMenu *pMenu, const char *pszText)
    {
        for (QAction *pAction : pMenu->actions())
            if (pAction->text() == QLatin1String(pszText))
                return pAction;
        ADD_FAILURE() << pszText;
        return nullptr;
    }
    static QStringList TextsOf(const QMenu *pMenu)
    {
        QStringList texts;
        for (const QAction *pAction : pMenu->actions())
            texts += pAction->isSeparator() ? QStringLiteral("-") : pAction->text();
        return texts;
    }

    Show show;
    QWidget window;
};

TEST_F(CommandMenus, AMenuHasTheRowsThatHaveTextsWithTheirKeys)
{
    EXPECT_EQ((QStringList{"&Save as...\tCtrl+S", "-", "On Top", "Layouts"}), TextsOf(OpenFile()));
}

TEST_F(CommandMenus, StatesAreThoseOfTheMomentInWhichAMenuOpens)
{
    QMenuBar bar(&window);
    FillMenuBar(&bar, {asBar, &show});
    ASSERT_EQ(2, bar.actions().size());
    EXPECT_EQ("&File", bar.actions()[0]->text());
    QMenu *pMenu = bar.actions()[0]->menu();
    show.bMaySave = false;
    show.bOnTop = true;
    pMenu->popup({20, 20});
    EXPECT_FALSE(Find(pMenu, "&Save as...\tCtrl+S")->isEnabled());
    EXPECT_TRUE(Find(pMenu, "On Top")->isChecked());
    show.bMaySave = true;
    show.bOnTop = false;
    RefreshCommands(&window);
    EXPECT_TRUE(Find(pMenu, "&Save as...\tCtrl+S")->isEnabled());
    EXPECT_FALSE(Find(pMenu, "On Top")->isChecked());
    EXPECT_FALSE(Find(pMenu, "Layouts")->isEnabled()) << "nothing in it";
    pMenu->hide();
    show.layouts = {{u"Salt & Pepper", 'a'}, {u"two\tlines\nof it", 'b'}};
    for (int i = 0; i < 2; i++) { // twice, for what the first time left
        pMenu->popup({20, 20});
        QMenu *pLayouts = Find(pMenu, "Layouts")->menu();
        EXPECT_TRUE(pLayouts->menuAction()->isEnabled());
        EXPECT_EQ((QStringList{"Salt && Pepper", "two lines of it"}), TextsOf(pLayouts));
        pLayouts->popup({40, 40});
        Find(pLayouts, "two lines of it")->trigger();
        pLayouts->hide();
        pMenu->hide();
    }
    EXPECT_EQ(u"bb", show.runs);
}

TEST_F(CommandMenus, AMarkSaysWhatTheCommandMadeOfIt)
{
    QMenu *pMenu = OpenFile();
    QAction *pTop = Find(pMenu, "On Top");
    pTop->trigger();
    EXPECT_TRUE(pTop->isChecked());
    pTop->trigger();
    EXPECT_TRUE(pTop->isChecked()) << "refused";
    EXPECT_EQ(u"ff", show.runs);
}

TEST_F(CommandMenus, AContextMenuRunsByKeyboardAndIsGoneWhenItCloses)
{
    const QPointer<QMenu> pMenu = OpenFile();
    QTest::keyClick(pMenu, Qt::Key_S);
    EXPECT_EQ(u"s", show.runs);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(pMenu.isNull());
}

TEST_F(CommandMenus, ShortcutsWorkInTheWindowAndAskWhetherTheyMay)
{
    AddCommandShortcuts(&window, {asBar, &show});
    QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(&window, Qt::Key_F5);
    QTest::keyClick(&window, Qt::Key_PageUp);
    EXPECT_EQ(u"sgp", show.runs);
    show.bMaySave = false;
    QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(&window, Qt::Key_S);
    EXPECT_EQ(u"sgp", show.runs);
}

TEST_F(CommandMenus, AToolBarShowsPicturesAndSaysWhatTheyMean)
{
    QToolBar *pBar = MakeToolBar({asFile, &show}, u"Tools", &window);
    const auto buttons = pBar->findChildren<QToolButton *>(Qt::FindDirectChildrenOnly);
    QToolButton *pSave = nullptr, *pTop = nullptr;
    for (QToolButton *pButton : buttons)
        if (pButton->accessibleName() == "Save as")
            pSave = pButton;
        else if (pButton->accessibleName() == "On Top")
            pTop = pButton;
    ASSERT_TRUE(pSave && pTop);
    EXPECT_FALSE(pSave->icon().isNull());
    EXPECT_EQ(Qt::ToolButtonIconOnly, pSave->toolButtonStyle());
    EXPECT_EQ(Qt::ToolButtonTextOnly, pTop->toolButtonStyle());
    EXPECT_TRUE(pSave->toolTip().contains("&lt;i&gt;")) << "plain text, whatever it looks like";
    pSave->click();
    pTop->click();
    EXPECT_EQ(u"sf", show.runs);
    show.bMaySave = false;
    RefreshCommands(&window);
    EXPECT_FALSE(pSave->isEnabled());
}

TEST(Icons, EveryPictureIsDrawnInTheUsersColourAndFillsItsPlace)
{
    SetDefaultUIColors();
    SetUIColor(UICOLOR_WINDOW_TEXT, 0x00102030); // blue, green, red
    const QStringList files = QDir(QStringLiteral(SOURCE_FOLDER "/data/UI")).entryList({"*.svg"});
    ASSERT_GE(files.size(), 3);
    for (const QString &file : files) {
        const QString name = file.chopped(4);
        if (name == "vorticade")
            continue; // the program's own sign keeps its colours
        EXPECT_EQ(name.toLower(), name);
        const QImage image = UserIcon(name.toLatin1()).pixmap(48, 48).toImage();
        ASSERT_EQ(QSize(48, 48), image.size()) << qPrintable(name);
        int nInked = 0, nStrange = 0;
        for (int y = 0; y < 48; y++)
            for (int x = 0; x < 48; x++) {
                const QColor color = image.pixelColor(x, y);
                nInked += color.alpha() > 200;
                const int nApart =
                    std::abs(color.red() - 0x30) + std::abs(color.green() - 0x20) + std::abs(color.blue() - 0x10);
                nStrange += color.alpha() > 200 && nApart > 6; // pixels at edges are rounded
            }
        EXPECT_GT(nInked, 40) << qPrintable(name);
        EXPECT_EQ(0, nStrange) << qPrintable(name) << " has colours of its own";
    }
    const QIcon icon = UserIcon("saveas");
    SetUIColor(UICOLOR_WINDOW_TEXT, 0x000000FF);
    const QImage red = icon.pixmap(24, 24).toImage();
    EXPECT_EQ(qRgb(255, 0, 0), red.pixelColor(4, 12).rgb() | 0xFF000000) << "an icon of before follows";
    EXPECT_TRUE(UserIcon("no-such-picture").isNull());
    SetDefaultUIColors();
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
