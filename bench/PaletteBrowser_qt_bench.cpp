// PaletteBrowser_qt_bench.cpp -- ten thousand palettes in the browser's list, and a page of strips that nobody has read
#include "bench/BenchFolder.h"
#include "bench/BenchReport.h"
#include "bench/OwnScreen.h"

#include "platform/MainThread.h"
#include "platform/Text.h"
#include "toolkit/DarkStyle_qt.h"
#include "toolkit/PaletteBrowser.h"
#include "toolkit/PaletteBrowser_qt.h"

#include <QApplication>
#include <QDialog>
#include <QScrollBar>
#include <QTreeView>

#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace {

constexpr unsigned ROUNDS = 15;
constexpr u32 PALETTES = 10000;
constexpr int PAGE_ROWS = 30;
constexpr double LIST_GOAL_MS = 60, PAGE_GOAL_MS = 10;
constexpr u32 FORMATS = 3;
constexpr size_t FORMAT_BYTES[FORMATS] = {8 + 3 * 2048, 8 + 4 * 236, 768};
constexpr const char *FORMAT_HEADS[FORMATS] = {"\0i\0B\0\x08\0\0", "\0B\0B\xB0\3\0\0", "raw color"};

// All three formats, each palette another one.
void MakePalettes(const std::filesystem::path &folder)
{
    for (u32 i = 0; i < PALETTES; i++) {
        std::string bytes(FORMAT_HEADS[i % FORMATS], 8);
        while (bytes.size() < FORMAT_BYTES[i % FORMATS])
            bytes += static_cast<char>(bytes.size() * (i % 251 + 1) >> 3);
        std::ofstream(folder / ("palette " + std::to_string(i * 2654435761u) + ".pal"), std::ios::binary) << bytes;
    }
}

// What the list has to do at least.
void WalkFolder(const std::filesystem::path &folder)
{
    u32 nFiles = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        nFiles += entry.path().extension() == ".pal";
    if (nFiles != PALETTES)
        std::exit(1);
}

struct Browser {
    Browser(const std::u16string &folder, u32 nRows)
        : pDialog(BrowsePalettes(nullptr, folder, [](const auto &) {})), pList(pDialog->findChild<QTreeView *>())
    {
        while (static_cast<u32>(pList->model()->rowCount()) != nRows)
            QCoreApplication::processEvents();
    }
    std::unique_ptr<QDialog> pDialog;
    QTreeView *pList;
};

// From the call to the painted window; without a folder, what any window of this kind costs.
bool ReportList(const std::filesystem::path &folder)
{
    std::vector<double> afWalk, afRows, afOpen, afEmpty;
    const std::u16string path = FromUtf8(folder.string());
    for (unsigned i = 0; i <= ROUNDS; i++) {
        const double fWalk = TimeCalls(1, [&] { WalkFolder(folder); });
        PaletteList list;
        szPaletteFolder = path;
        const double fRows = TimeCalls(1, [&] { FillPaletteList(&list); });
        const double fEmpty = TimeCalls(1, [] { Browser(u"/nowhere/at/all", 0).pDialog->grab(); });
        const double fOpen = TimeCalls(1, [&] { Browser(path, PALETTES).pDialog->grab(); });
        if (i == 0)
            continue;
        afWalk.push_back(fWalk / 1000);
        afRows.push_back(fRows / 1000);
        afEmpty.push_back(fEmpty / 1000);
        afOpen.push_back(fOpen / 1000);
    }
    const bool bMet = ReportFigure("PaletteBrowser/10000 palettes, from opening to painted", Median(afOpen),
                                   LIST_GOAL_MS, "ms", BenchGoal::AT_MOST);
    ReportFigure("PaletteBrowser/the same with an empty list", Median(afEmpty), 0, "ms", BenchGoal::NONE);
    ReportFigure("PaletteBrowser/their rows alone", Median(afRows), 0, "ms", BenchGoal::NONE);
    ReportFigure("PaletteBrowser/their rows over a plain folder walk", MedianRatio(afRows, afWalk), 0, "x",
                 BenchGoal::NONE);
    return bMet;
}

std::vector<std::string> PathsOfPage(const Browser &browser, const PaletteList &list, int iFirst)
{
    std::vector<std::string> paths;
    for (int i = iFirst; i < iFirst + PAGE_ROWS && i < browser.pList->model()->rowCount(); i++)
        paths.push_back(ToUtf8(PalettePath(list, static_cast<u32>(i))));
    return paths;
}

void ReadPlainly(const std::vector<std::string> &paths)
{
    char ab[8192];
    for (const std::string &path : paths) {
        std::FILE *pFile = std::fopen(path.c_str(), "rb");
        if (!pFile || std::fread(ab, 1, sizeof ab, pFile) == 0)
            std::exit(1);
        std::fclose(pFile);
        KeepResult(ab);
    }
}

// Each page is painted for the first time, then again.
bool ReportPages(const std::filesystem::path &folder)
{
    Browser browser(FromUtf8(folder.string()), PALETTES);
    PaletteList list;
    FillPaletteList(&list);
    QTreeView *pList = browser.pList;
    QCoreApplication::processEvents();
    const int nRow = std::max(pList->visualRect(pList->model()->index(0, 0)).height(), 1);
    browser.pDialog->resize(1000, browser.pDialog->height() + PAGE_ROWS * nRow - pList->viewport()->height());
    QCoreApplication::processEvents();
    std::vector<double> afCold, afWarm, afRead;
    for (unsigned i = 0; i <= ROUNDS; i++) {
        const int iFirst = static_cast<int>(i + 2) * 10 * PAGE_ROWS;
        const std::vector<std::string> paths = PathsOfPage(browser, list, iFirst);
        const double fRead = TimeCalls(1, [&] { ReadPlainly(paths); });
        pList->verticalScrollBar()->setValue(iFirst);
        if (pList->indexAt({5, 5}).row() != iFirst)
            std::exit(1);
        const double fCold = TimeCalls(1, [&] { pList->viewport()->repaint(); });
        const double fWarm = TimeCalls(1, [&] { pList->viewport()->repaint(); });
        QCoreApplication::processEvents();
        if (i == 0)
            continue;
        afRead.push_back(fRead / 1000);
        afCold.push_back(fCold / 1000);
        afWarm.push_back(fWarm / 1000);
    }
    const bool bMet = ReportFigure("PaletteBrowser/30 strips painted for the first time", Median(afCold), PAGE_GOAL_MS,
                                   "ms", BenchGoal::AT_MOST);
    ReportFigure("PaletteBrowser/the same over a plain read of the files", MedianRatio(afCold, afRead), 0, "x",
                 BenchGoal::NONE);
    ReportFigure("PaletteBrowser/30 strips painted again", Median(afWarm), 0, "ms", BenchGoal::NONE);
    return bMet;
}

double HeapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

void ReportMemory(const std::filesystem::path &folder)
{
    szPaletteFolder = FromUtf8(folder.string());
    const double fBefore = HeapBytes();
    PaletteList list;
    const u32 nRows = FillPaletteList(&list);
    ReportFigure("PaletteBrowser/memory for a row that was not painted", (HeapBytes() - fBefore) / nRows, 0, "bytes",
                 BenchGoal::NONE);
}

} // namespace

int main(int argc, char **argv)
{
    ClaimMainThread();
    const pid_t pidScreen = bench::StartScreen();
    bool bMet = true;
    {
        const BenchFolder folder;
        MakePalettes(folder.Path());
        QApplication app(argc, argv);
        InstallDarkLook(&app);
        QApplication::setQuitOnLastWindowClosed(false);
        bMet &= ReportList(folder.Path());
        bMet &= ReportPages(folder.Path());
        ReportMemory(folder.Path());
    }
    bench::StopScreen(pidScreen);
    return bMet ? 0 : 1;
}
