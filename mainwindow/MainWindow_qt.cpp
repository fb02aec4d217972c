// MainWindow_qt.cpp -- the control room: menu, tool buttons, preset tree, status strip
#include "mainwindow/MainWindow_qt.h"

#include "controls/panels/ColorWindow_qt.h"
#include "editing/PresetTreeView_qt.h"
#include "editing/TreeMenu_qt.h"
#include "editing/TreeFollower.h"
#include "engine/PresetDocument.h"
#include "engine/PresetManager.h"
#include "mainwindow/SoundMeter_qt.h"
#include "mainwindow/StatusStrip.h"
#include "modules/SoundMonitor.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "state/Folders.h"
#include "toolkit/CommandMenus_qt.h"
#include "toolkit/Commands.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/DialogScaling_qt.h"
#include "toolkit/FileChooser_qt.h"
#include "toolkit/Icons_qt.h"
#include "toolkit/QuestionBox_qt.h"
#include "toolkit/WindowLayouts_qt.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace {

constexpr QSize FIRST_SIZE(310, 440);
constexpr int EDGE = 4;
constexpr int TOOL_ICON = 22;

MainWindow *WindowOf(void *pv)
{
    return static_cast<MainWindow *>(pv);
}

QString Text(const std::u16string &s)
{
    return QString::fromStdU16String(s);
}

void (*pfnEndProgram)() = nullptr;

void *MakeMainWindow(void *)
{
    auto *pWindow = new MainWindow(pfnEndProgram);
    FollowWindow(MAIN_WINDOW, pWindow);
    pWindow->StartStatus();
    return static_cast<QWidget *>(pWindow);
}

// A text that is set anew lays the window out anew, also if it is the same.
void ShowText(QLabel *pField, const std::u16string &s)
{
    const QString text = Text(s);
    if (pField->text() != text)
        pField->setText(text);
}

QHBoxLayout *MakeRow()
{
    auto *pRow = new QHBoxLayout;
    pRow->setContentsMargins(0, 0, 0, 0);
    pRow->setSpacing(EDGE);
    return pRow;
}

} // namespace

MainWindow::MainWindow(void (*pfn)()) : pfnExit(pfn)
{
    Actions = {
        .pvWindow = this,
        .pfnNew = [](void *pv) { WindowOf(pv)->New(); },
        .pfnOpen = [](void *pv) { WindowOf(pv)->Open(); },
        .pfnSaveAs = [](void *pv) { WindowOf(pv)->SaveAs(); },
        .pfnExit = [](void *pv) { WindowOf(pv)->pfnExit(); },
        .pfnOpenProgram = [](void *, const std::u16string &path) { QProcess::startDetached(Text(path), {}); },
    };
    auto *pMenuBar = new QMenuBar;
    const CommandTable menu = {MainMenu(), &Actions};
    FillMenuBar(pMenuBar, menu);
    AddCommandShortcuts(this, menu);
    pTreeView = new PresetTreeView(&Tree);
    auto *pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(EDGE, 0, EDGE, EDGE);
    pLayout->setSpacing(EDGE);
    pLayout->setMenuBar(pMenuBar);
    pLayout->addWidget(MakeToolButtons());
    pLayout->addWidget(pTreeView, 1);
    pLayout->addWidget(MakeStatusStrip());
    setFixedWidth(std::max(FIRST_SIZE.width(), sizeHint().width() + 2 * SIZING_BAND));
    resize(width(), FIRST_SIZE.height());
    EnableDialogScaling(this);
    ScaleInfoOf(this)->bRawChildRects = 1;
    ConnectTree();
    FollowPreset(Tree);
    BuildPresetTree(Tree, CurrentPreset());
    PresetListeners.Add(HearPreset, this);
    connect(&StatusTimer, &QTimer::timeout, this, [this] { UpdateStatus(); });
    setWindowTitle(TitleText(MainWindowTitle()));
    pTreeView->setFocus();
}

MainWindow::~MainWindow()
{
    PresetListeners.Remove(HearPreset, this);
    UnfollowPreset(Tree);
    pPanels.reset();
    delete pTreeView; // with a menu of it that is open, while the tree is there
}

QWidget *MainWindow::MakeToolButtons()
{
    auto *pButtons = new QWidget;
    QHBoxLayout *pRow = MakeRow();
    size_t iButton = 0;
    for (const Command &command : MainToolButtons()) {
        QToolButton *pButton = MakeCommandButton(command, &Actions, pButtons);
        pButton->setIconSize(QSize(TOOL_ICON, TOOL_ICON));
        pButton->setVisible(iButton++ != UPDATE_BUTTON);
        pRow->addWidget(pButton);
    }
    pRow->addStretch();
    pButtons->setLayout(pRow);
    return pButtons;
}

QLabel *MainWindow::MakeField()
{
    auto *pField = new QLabel;
    pField->setTextFormat(Qt::PlainText);
    return pField;
}

QWidget *MainWindow::MakeStatusStrip()
{
    auto *pStrip = new QWidget;
    auto *pFields = new QFormLayout;
    pFields->setVerticalSpacing(1);
    pFields->addRow(QStringLiteral("FPS"), pFps = MakeField());
    pFields->addRow(QStringLiteral("Buffer"), pBuffer = MakeField());
    pFields->addRow(QStringLiteral("Window"), pWindowSize = MakeField());
    pSound = MakeCommandButton(SoundButton(), &Actions, pStrip);
    QHBoxLayout *pSoundRow = MakeRow();
    pSoundRow->addWidget(pMeter = new SoundMeter, 1);
    pSoundRow->addWidget(pSound);
    auto *pLayout = new QVBoxLayout(pStrip);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->setSpacing(EDGE);
    pLayout->addLayout(pFields);
    pLayout->addLayout(pSoundRow);
    return pStrip;
}

void MainWindow::ConnectTree()
{
    pTreeView->pfnContextMenu = [this](TreeNode *pNode, const QPoint &place) { OpenTreeMenu(pNode, place); };
    pPanels = std::make_unique<PanelHost>(&Tree, this);
    pPanels->pfnActivated = [this](TreeNode *pNode) {
        if (pTreeView->SelectedNode() != pNode)
            pTreeView->SelectNode(pNode);
    };
    pTreeView->pfnClicked = [this](TreeNode *pNode, TreeNode *pOld) { pPanels->NodeClicked(pNode, pOld); };
    pTreeView->pfnBring = [this](TreeNode *pNode) { pPanels->BringPanel(pNode); };
    pTreeView->pfnRemove = [this](TreeNode *pNode) { RunTreeCommand(Tree, pNode, TreeCommand::Remove, 0); };
}

void MainWindow::OpenTreeMenu(TreeNode *pNode, const QPoint &place)
{
    MakeTreeMenu(&Tree, pNode, pTreeView, [this](TreeNode *pTarget, TreeCommand eCommand, u32 dwArgument) {
        RunTreeCommand(Tree, pTarget, eCommand, dwArgument);
    })->popup(place);
}

void MainWindow::HearPreset(const PresetNews &news, void *pv)
{
    MainWindow *pWindow = WindowOf(pv);
    if (news.eKind == NewsKind::Going && pWindow->pChooser)
        pWindow->pChooser->close(); // what was to be saved is gone
    if (news.eKind == NewsKind::Marked)
        pWindow->setWindowTitle(TitleText(MainWindowTitle()));
}

void MainWindow::SelectRoot()
{
    pTreeView->SelectNode(Tree.pRoot);
}

void MainWindow::New()
{
    ConfirmDiscard(this, [] { NewPreset(); });
}

void MainWindow::Open()
{
    ConfirmDiscard(this, [this] {
        AskForFile(this, {u"Open", FolderPath(PATH_PRESETS), {}, u"*.VD", false}, [](const std::u16string &path) {
            PresetReport report = {};
            LoadPresetByName(path, &report);
            SayReport(path, report);
        });
    });
}

void MainWindow::SaveAs()
{
    pChooser = AskForFile(this, {u"Save As", FolderPath(PATH_PRESETS), PresetName(), u"*.VD", true},
                          [this](const std::u16string &path) { Save(path); });
}

void MainWindow::Save(const std::u16string &path)
{
    std::string sWhy;
    if (SavePresetAs(path, &sWhy))
        return;
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, sWhy.c_str());
    ShowErrorBox(this, QStringLiteral("Error"), QStringLiteral("Error Saving File"));
}

void MainWindow::StartStatus()
{
    UpdateStatus();
    StatusTimer.start(STATUS_TIMER_MS);
}

void MainWindow::UpdateStatus()
{
    StatusTexts texts;
    if (TakeStatusTexts(TickCount(), &texts)) {
        ShowText(pFps, texts.sFps);
        ShowText(pBuffer, texts.sBuffer);
        ShowText(pWindowSize, texts.sWindow);
    }
    const bool bQuiet = SoundIsQuiet() != 0;
    ShowSound(bQuiet);
    pMeter->Follow(bQuiet);
}

void MainWindow::ShowSound(bool bQuiet)
{
    if (nQuietShown == bQuiet)
        return;
    nQuietShown = bQuiet;
    pSound->setIcon(UserIcon(bQuiet ? "quiet" : "sound"));
}

void MainWindow::closeEvent(QCloseEvent *pEvent)
{
    pEvent->ignore(); // the main loop takes it down in its order
    ConfirmDiscard(this, pfnExit);
}

// Wherever the pointer is in this window, the tree turns. What the tree does not want comes back here.
void MainWindow::wheelEvent(QWheelEvent *pEvent)
{
    if (bWheelPassedOn)
        return;
    bWheelPassedOn = true;
    QCoreApplication::sendEvent(pTreeView->viewport(), pEvent);
    bWheelPassedOn = false;
}

void RegisterMainWindow(void (*pfnExit)())
{
    ASSERT_MAIN_THREAD();
    static const WindowKind kind = {MAIN_WINDOW, WindowUse::Main, MakeMainWindow, &WidgetFunctions};
    pfnEndProgram = pfnExit;
    RegisterWindow(kind);
    RegisterWindow(ColorWindowKind);
}
