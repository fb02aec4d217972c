// MainWindow_qt_bench.cpp -- the preset tree on the screen, a switch of presets under the main window, and its rest
#include "bench/BenchReport.h"
#include "bench/FullPreset.h"
#include "bench/OwnScreen.h"

#include "app/MainLoop.h"
#include "app/MainLoop_qt.h"
#include "app/Startup.h"
#include "editing/PresetTreeView_qt.h"
#include "engine/FrameStep.h"
#include "engine/PresetDocument.h"
#include "engine/PresetManager.h"
#include "mainwindow/MainWindow_qt.h"
#include "mainwindow/StatusStrip.h"
#include "output/VisualsWindow_qt.h"
#include "platform/Assert.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"
#include "toolkit/DarkStyle_qt.h"
#include "toolkit/WindowLayouts.h"

#include <QApplication>
#include <QPainter>
#include <QStandardItemModel>
#include <QTimer>

#include <filesystem>
#include <set>

namespace {

constexpr unsigned ROUNDS = 31;
constexpr unsigned REPAINTS = 8;
constexpr int VISIBLE_ROWS = 60;
constexpr double SHOW_GOAL_MS = 16, REPAINT_GOAL_MS = 2;

constexpr double FPS = 60;
constexpr double LATE_FRAMES = 1.5; // an interval longer than so many frames has missed one
constexpr int SWITCH_MS = 300;      // from one switch to the next
constexpr u32 FOLLOWING_FRAMES = 3; // whose events count as the switch's: by then everything is painted
constexpr u32 PASSES = 2;           // over all presets; modules are new in the first at most
constexpr double KNOWN_GOAL_MS = 8, NEW_GOAL_MS = 20;
constexpr double KNOWN_MISSES = 0, NEW_MISSES = 1;

constexpr unsigned REST_ROUNDS = 5;
constexpr i64 REST_SLICE_NS = 2000000000; // of each side in a round
constexpr double REST_GOAL_PERCENT = 1;

double Percentile(std::vector<double> af, size_t nPercent)
{
    std::sort(af.begin(), af.end());
    return af.empty() ? 0 : af[(af.size() * nPercent + 99) / 100 - 1];
}

// Counts the processor time that the main thread spends in events, those inside events not twice. Showing a frame is
// part of every frame, not of a switch.
class TimedApplication : public QApplication {
  public:
    using QApplication::QApplication;
    bool notify(QObject *pObject, QEvent *pEvent) override
    {
        const bool bFrame = (pEvent->type() == QEvent::UpdateRequest || pEvent->type() == QEvent::Paint) &&
                            dynamic_cast<VisualsWindow *>(pObject);
        if (bInside || bFrame)
            return QApplication::notify(pObject, pEvent);
        bInside = true;
        const double fStart = ThreadSeconds();
        const bool bTaken = QApplication::notify(pObject, pEvent);
        fSeconds += ThreadSeconds() - fStart;
        bInside = false;
        return bTaken;
    }
    double fSeconds = 0;

  private:
    bool bInside = false;
};

class PaintCounter : public QObject {
  public:
    explicit PaintCounter(QTreeView *pView)
    {
        pView->viewport()->installEventFilter(this);
    }
    void AwaitNext()
    {
        for (const unsigned nBefore = nPaints; nPaints == nBefore;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
    }

  protected:
    bool eventFilter(QObject *, QEvent *pEvent) override
    {
        nPaints += pEvent->type() == QEvent::Paint;
        return false;
    }

  private:
    unsigned nPaints = 0;
};

// The least that a tree on the screen has to be: the toolkit's own view of the toolkit's own items.
void CopyTexts(QStandardItem *pParent, const TreeNode *pNode)
{
    auto *pItem = new QStandardItem(QString::fromStdU16String(pNode->sText));
    pParent->appendRow(pItem);
    for (const TreeNode *pChild : pNode->apChild)
        CopyTexts(pItem, pChild);
}

void ExpandLike(QTreeView *pView, const QModelIndex &index, const TreeNode *pNode)
{
    if (!pNode->bExpanded || pNode->apChild.empty())
        return;
    pView->setExpanded(index, true);
    for (size_t i = 0; i < pNode->apChild.size(); i++)
        ExpandLike(pView, pView->model()->index(static_cast<int>(i), 0, index), pNode->apChild[i]);
}

struct PlainTree {
    void Build(const TreeNode *pRoot)
    {
        auto pNew = std::make_unique<QStandardItemModel>();
        CopyTexts(pNew->invisibleRootItem(), pRoot);
        View.setModel(pNew.get());
        View.scheduleDelayedItemsLayout();
        ExpandLike(&View, pNew->index(0, 0), pRoot);
        pModel = std::move(pNew);
    }
    std::unique_ptr<QStandardItemModel> pModel;
    struct OpenView : QTreeView {
        using QTreeView::scheduleDelayedItemsLayout;
    } View;
};

void ShowTall(QTreeView *pView)
{
    pView->setUniformRowHeights(true);
    pView->setHeaderHidden(true);
    pView->show();
    const QModelIndex first = pView->model()->index(0, 0);
    const int nRow = std::max(pView->visualRect(first).height(), 1);
    pView->resize(400, VISIBLE_ROWS * nRow + 2 * pView->frameWidth());
    QCoreApplication::processEvents();
}

bool ReportTree()
{
    const auto pFull = std::make_unique<bench::FullPreset>();
    PresetTree tree;
    BuildPresetTree(tree, &pFull->Preset);
    PresetTreeView view(&tree);
    PlainTree plain;
    plain.Build(tree.pRoot);
    ShowTall(&view);
    ShowTall(&plain.View);
    PaintCounter paints(&view), plainPaints(&plain.View);
    std::vector<double> afShow, afPlainShow, afPaint, afPlainPaint;
    for (unsigned i = 0; i <= ROUNDS; i++) {
        const double fShow = CpuOfCalls(1, [&] {
            BuildPresetTree(tree, &pFull->Preset);
            paints.AwaitNext();
        });
        const double fPlain = CpuOfCalls(1, [&] {
            plain.Build(tree.pRoot);
            plainPaints.AwaitNext();
        });
        if (i == 0)
            continue;
        afShow.push_back(fShow / 1000);
        afPlainShow.push_back(fPlain / 1000);
    }
    ExpandBranch(tree, tree.pRoot, true);
    plain.View.expandAll();
    QCoreApplication::processEvents();
    for (unsigned i = 0; i <= ROUNDS; i++) {
        const double fPaint = CpuOfCalls(REPAINTS, [&] { view.viewport()->repaint(); });
        const double fPlain = CpuOfCalls(REPAINTS, [&] { plain.View.viewport()->repaint(); });
        if (i == 0)
            continue;
        afPaint.push_back(fPaint / 1000);
        afPlainPaint.push_back(fPlain / 1000);
    }
    bool bMet = ReportFigure("MainWindow/full preset, from building to painted", Median(afShow), SHOW_GOAL_MS, "ms",
                             BenchGoal::AT_MOST);
    ReportFigure("MainWindow/the same over a plain view of strings", MedianRatio(afShow, afPlainShow), 0, "x",
                 BenchGoal::NONE);
    bMet &= ReportFigure("MainWindow/repaint of 60 rows", Median(afPaint), REPAINT_GOAL_MS, "ms", BenchGoal::AT_MOST);
    ReportFigure("MainWindow/repaint over a plain view of strings", MedianRatio(afPaint, afPlainPaint), 0, "x",
                 BenchGoal::NONE);
    return bMet;
}

// A monitor whose levels never rest, so that the meter has something to draw each time.
u32 MovingLevel(void *, i32 nType, f32 *pfLevel)
{
    static u32 nCall = 0;
    *pfLevel = static_cast<f32>((++nCall * 37 + static_cast<u32>(nType) * 11) % 100) / 100;
    return 1;
}

void StartShow()
{
    VD_ASSERT(!StartHeadless({FromUtf8(SOURCE_FOLDER "/data"), FromUtf8(STOCK_MODULE_FOLDER), {}}));
    GlobalSettings.FPSTarget = static_cast<i32>(FPS);
    GlobalSettings.AutoAdjustBuffer = 0;
    GlobalSettings.nBufferWidth = 640;
    GlobalSettings.nBufferHeight = 360;
    GlobalSettings.Monitor.pfnGetLevel = MovingLevel;
    RegisterMainWindow(RequestExit);
}

struct Windows {
    Windows() : Visuals(std::make_unique<VisualsWindow>(RequestExit))
    {
        Visuals->resize(1280, 720);
        Visuals->show();
    }
    ~Windows()
    {
        HideMain();
    }
    void ShowMain()
    {
        pMain = static_cast<QWidget *>(OpenWindow(MAIN_WINDOW, nullptr, 1));
    }
    void HideMain()
    {
        delete pMain;
        pMain = nullptr;
    }
    std::unique_ptr<VisualsWindow> Visuals;
    QWidget *pMain = nullptr;
};

// Presets that the processor draws: what a shader's translation costs says nothing about windows.
std::vector<std::u16string> StockPresets()
{
    std::set<std::string> paths; // in the order of their names
    for (const auto &entry : std::filesystem::directory_iterator(SOURCE_FOLDER "/data/Presets"))
        if (entry.path().extension() == ".VD" && !entry.path().filename().string().starts_with("Shader"))
            paths.insert(entry.path().string());
    std::vector<std::u16string> presets;
    for (const std::string &path : paths)
        presets.push_back(FromUtf8(path));
    return presets;
}

// Notes what modules the current preset is made of. Whether one of them has not been seen before.
bool NoteModules(std::set<const void *> *pSeen)
{
    const PresetState *lppsi = CurrentPreset();
    const size_t nBefore = pSeen->size();
    for (i32 i = 0; lppsi && i < lppsi->nPlanes; i++)
        for (u32 dwList = 0; dwList < MODULEINDEX_MIXER; dwList++)
            for (i32 k = 0; k < lppsi->psPlane[i]->anModules[dwList]; k++)
                pSeen->insert(lppsi->psPlane[i]->apModule[dwList][k]->pmd);
    for (i32 i = 0; lppsi && i < lppsi->nPostProc; i++)
        pSeen->insert(lppsi->apPostProc[i]->pmd);
    return pSeen->size() > nBefore;
}

// What a switch cost the main thread: the processor time of the switch itself and of all events up to the frames behind
// it, and what the user could see of it.
struct SwitchCost {
    double fEventsMs;
    double fWallMs;
    u32 nMissed;
    u32 bNewModules;
};

// Opens one preset after the other from a timer, as a command would, while frames run.
class SwitchRun {
  public:
    explicit SwitchRun(TimedApplication *p) : pApp(p), presets(StockPresets())
    {
        BeforeFrameListeners.Add([](void *pv) { static_cast<SwitchRun *>(pv)->WatchTurn(); }, this);
        QObject::connect(&Timer, &QTimer::timeout, [this] { Switch(); });
        Timer.start(SWITCH_MS);
    }
    std::vector<SwitchCost> Costs;

  private:
    void WatchTurn()
    {
        const i64 nDue = NextFrameCount();
        if (nDue == nDueBefore)
            return;
        const double fFrames = static_cast<double>(nDue - nDueBefore) * FPS / 1e9;
        const bool bFirst = nDueBefore == 0;
        nDueBefore = nDue;
        if (bFirst || Costs.empty() || nFollowing++ >= FOLLOWING_FRAMES)
            return;
        Costs.back().nMissed += fFrames > LATE_FRAMES ? static_cast<u32>(fFrames + 0.5) - 1 : 0;
        Costs.back().fEventsMs = (pApp->fSeconds - fEventsBefore) * 1000;
    }
    void Switch()
    {
        if (iNext == presets.size() * PASSES)
            return RequestExit();
        fEventsBefore = pApp->fSeconds;
        nFollowing = 0;
        const i64 nStart = RealNanoseconds();
        LoadPresetByName(presets[iNext++ % presets.size()]);
        const double fWallMs = static_cast<double>(RealNanoseconds() - nStart) / 1e6;
        Costs.push_back({0, fWallMs, 0, NoteModules(&Seen)});
    }

    TimedApplication *const pApp;
    const std::vector<std::u16string> presets;
    std::set<const void *> Seen;
    QTimer Timer;
    size_t iNext = 0;
    double fEventsBefore = 0;
    u32 nFollowing = 0; // frames since the switch
    i64 nDueBefore = 0;
};

// In a process of its own: modules are new to it. A line a switch on standard output.
int RunSwitches(TimedApplication *pApp, bool bWindows)
{
    StartShow();
    std::unique_ptr<Windows> pWindows;
    if (bWindows) {
        pWindows = std::make_unique<Windows>();
        pWindows->ShowMain();
    }
    OpenDefaultPreset();
    SwitchRun run(pApp);
    RunMainLoop();
    for (const SwitchCost &cost : run.Costs)
        std::printf("%.6f %.6f %u %u\n", cost.fEventsMs, cost.fWallMs, cost.nMissed, cost.bNewModules);
    std::fflush(stdout);
    std::_Exit(0); // the drivers that modules have loaded need not be taken down
}

struct Switches {
    std::vector<double> afEvents, afWall;
    double fMissed = 0, fMissedMost = 0;
};

// Of the presets with modules that were new to the run, or of the others.
Switches Sort(const std::vector<SwitchCost> &costs, bool bNewModules)
{
    Switches switches;
    for (const SwitchCost &cost : costs)
        if (static_cast<bool>(cost.bNewModules) == bNewModules) {
            switches.afEvents.push_back(cost.fEventsMs);
            switches.afWall.push_back(cost.fWallMs);
            switches.fMissed += cost.nMissed;
            switches.fMissedMost = std::max(switches.fMissedMost, static_cast<double>(cost.nMissed));
        }
    return switches;
}

std::vector<SwitchCost> ReadSwitches(const char *pszSelf, const char *pszHow)
{
    int fdOutput;
    const pid_t pid = bench::StartReading({pszSelf, "--switches", pszHow, nullptr}, &fdOutput);
    FILE *pFile = fdopen(fdOutput, "r");
    std::vector<SwitchCost> costs;
    for (SwitchCost cost;
         std::fscanf(pFile, "%lf %lf %u %u", &cost.fEventsMs, &cost.fWallMs, &cost.nMissed, &cost.bNewModules) == 4;)
        costs.push_back(cost);
    std::fclose(pFile);
    waitpid(pid, nullptr, 0);
    return costs;
}

// Both runs open the same presets in the same order.
std::vector<double> Differences(const std::vector<double> &afWith, const std::vector<double> &afWithout)
{
    std::vector<double> af;
    for (size_t i = 0; i < std::min(afWith.size(), afWithout.size()); i++)
        af.push_back(afWith[i] - afWithout[i]);
    return af;
}

bool ReportSwitches(const char *pszWhich, const Switches &with, const Switches &without, double fGoalMs, double fMisses)
{
    const std::string sName = std::string("MainWindow/switch, ") + pszWhich;
    const auto say = [&](const char *pszWhat, double fFigure, double fGoal, const char *pszUnit, BenchGoal eGoal) {
        return ReportFigure((sName + pszWhat).c_str(), fFigure, fGoal, pszUnit, eGoal);
    };
    say(": how many", static_cast<double>(with.afEvents.size()), 0, "", BenchGoal::NONE);
    bool bMet = say(", p99", Percentile(with.afEvents, 99), fGoalMs, "ms", BenchGoal::AT_MOST);
    say(", p99 without windows", Percentile(without.afEvents, 99), 0, "ms", BenchGoal::NONE);
    say(", p50", Median(with.afEvents), 0, "ms", BenchGoal::NONE);
    say(", p50 without windows", Median(without.afEvents), 0, "ms", BenchGoal::NONE);
    say(", over without windows", MedianRatio(with.afEvents, without.afEvents), 0, "x", BenchGoal::NONE);
    const std::vector<double> afShare = Differences(with.afEvents, without.afEvents);
    say(", the windows' share, p50", Median(afShare), 0, "ms", BenchGoal::NONE);
    say(", the windows' share, p99", Percentile(afShare, 99), 0, "ms", BenchGoal::NONE);
    say(", p99 by the wall clock", Percentile(with.afWall, 99), 0, "ms", BenchGoal::NONE);
    say(", the same without windows", Percentile(without.afWall, 99), 0, "ms", BenchGoal::NONE);
    bMet &= say(", missed frames at most", with.fMissedMost, fMisses, "frames", BenchGoal::AT_MOST);
    say(", all missed frames", with.fMissed, 0, "frames", BenchGoal::NONE);
    say(", the same without windows", without.fMissed, 0, "frames", BenchGoal::NONE);
    return bMet;
}

bool ReportBothSwitches(const char *pszSelf)
{
    const std::vector<SwitchCost> without = ReadSwitches(pszSelf, "bare"), with = ReadSwitches(pszSelf, "windows");
    bool bMet = ReportSwitches("known modules", Sort(with, false), Sort(without, false), KNOWN_GOAL_MS, KNOWN_MISSES);
    bMet &= ReportSwitches("new modules", Sort(with, true), Sort(without, true), NEW_GOAL_MS, NEW_MISSES);
    return bMet && !with.empty();
}

double ProcessSeconds()
{
    timespec ts;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

// Percent of a core that the whole program takes for a slice.
double LoadOfSlice()
{
    const double fStart = ProcessSeconds();
    const i64 nStart = RealNanoseconds();
    QTimer::singleShot(static_cast<int>(REST_SLICE_NS / 1000000), [] { RequestExit(); });
    RunMainLoop();
    return (ProcessSeconds() - fStart) * 1e11 / static_cast<double>(RealNanoseconds() - nStart);
}

// The least that a moving meter has to be: a strip of the same size, in a window of its own, filled at the same times.
class PlainStrip : public QWidget {
  public:
    PlainStrip()
    {
        resize(300, 25);
        setAttribute(Qt::WA_OpaquePaintEvent);
        connect(&Timer, &QTimer::timeout, this, qOverload<>(&QWidget::update));
        Timer.start(STATUS_TIMER_MS);
        show();
    }

  protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(rect(), QColor::fromHsv(nHue++ % 360, 255, 255));
    }

  private:
    QTimer Timer;
    int nHue = 0;
};

void Settle()
{
    for (u32 i = 0; i < 5; i++)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// With an empty preset, so that what modules draw does not hide it.
bool ReportRest()
{
    StartShow();
    Windows windows;
    NewPreset();
    std::vector<double> afMoving, afQuiet, afStrip;
    for (unsigned i = 0; i < REST_ROUNDS; i++) {
        Settle();
        const double fWithout = LoadOfSlice();
        windows.ShowMain();
        Settle();
        GlobalSettings.Monitor.pfnGetLevel = nullptr;
        afQuiet.push_back(LoadOfSlice() - fWithout);
        GlobalSettings.Monitor.pfnGetLevel = MovingLevel;
        afMoving.push_back(LoadOfSlice() - fWithout);
        windows.HideMain();
        const PlainStrip strip;
        Settle();
        afStrip.push_back(LoadOfSlice() - fWithout);
    }
    bool bMet = ReportFigure("MainWindow/strip, meter and tree at rest, no sound", Median(afQuiet), REST_GOAL_PERCENT,
                             "% core", BenchGoal::AT_MOST);
    bMet &= ReportFigure("MainWindow/the same, each level a new one", Median(afMoving), REST_GOAL_PERCENT, "% core",
                         BenchGoal::AT_MOST);
    ReportFigure("MainWindow/a plain strip in a window, refilled", Median(afStrip), 0, "% core", BenchGoal::NONE);
    ReportFigure("MainWindow/each level a new one over a plain strip", MedianRatio(afMoving, afStrip), 0, "x",
                 BenchGoal::NONE);
    SwitchPreset(nullptr, nullptr);
    return bMet;
}

} // namespace

// Without an argument all parts; else the one that it names: "tree", "rest" or "switches".
int main(int argc, char **argv)
{
    ClaimMainThread();
    const auto isAskedFor = [&](const char *pszPart) { return argc < 2 || std::strcmp(argv[1], pszPart) == 0; };
    const bool bSwitches = argc > 2 && std::strcmp(argv[1], "--switches") == 0;
    const pid_t pidScreen = bSwitches ? 0 : bench::StartScreen();
    bool bMet = true;
    {
        TimedApplication app(argc, argv);
        InstallDarkLook(&app);
        QApplication::setQuitOnLastWindowClosed(false);
        if (bSwitches)
            return RunSwitches(&app, std::strcmp(argv[2], "windows") == 0);
        bMet &= !isAskedFor("tree") || ReportTree();
        bMet &= !isAskedFor("rest") || ReportRest();
    }
    bMet &= !isAskedFor("switches") || ReportBothSwitches(argv[0]);
    bench::StopScreen(pidScreen);
    return bMet ? 0 : 1;
}
