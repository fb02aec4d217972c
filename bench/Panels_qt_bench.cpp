// Panels_qt_bench.cpp -- a plane's preview over a plain read of the bitmap that it shows
#include "bench/BenchReport.h"
#include "bench/OwnScreen.h"

#include "controls/panels/PlanePicture.h"
#include "controls/panels/PlanePreview_qt.h"
#include "platform/Bitmap.h"
#include "platform/MainThread.h"
#include "toolkit/DarkStyle_qt.h"

#include <QApplication>
#include <QImage>

#include <numeric>
#include <string>

namespace {

constexpr unsigned ROUNDS = 61, CALLS = 4;
constexpr double GOAL = 1.5;

struct Case {
    const char *pszName;
    i32 nWidth, nHeight;
};
constexpr Case asCase[] = {{"1280x720", 1280, 720}, {"1920x1080", 1920, 1080}, {"3840x2160", 3840, 2160}};

// Another picture each time, so that every turn of the preview has something to paint.
void Scribble(HostBitmap *hbm, u32 nRound)
{
    const size_t nPixels = static_cast<size_t>(hbm->nWidth) * static_cast<size_t>(hbm->nHeight);
    for (size_t i = 0; i < nPixels; i++)
        BitmapPixels(hbm)[i] = static_cast<u32>(i * 2654435761u + nRound * 40503u);
}

void ReadPlainly(const HostBitmap *hbm)
{
    const u32 *pPixel = BitmapPixels(hbm);
    KeepResult(std::accumulate(pPixel, pPixel + BitmapBytes(hbm) / sizeof *pPixel, 0u));
}

bool ReportCase(const Case &size)
{
    PlaneState plane = {};
    plane.Info.hbmResolved = CreateBitmap(size.nWidth, size.nHeight);
    PlanePreview preview([&] { return &plane; });
    preview.resize(preview.sizeHint());
    preview.show();
    while (preview.visibleRegion().isEmpty())
        QCoreApplication::processEvents();
    QImage painted(preview.size(), QImage::Format_RGB32);
    std::vector<double> afRead, afTurn;
    for (u32 nRound = 0; nRound < ROUNDS; nRound++) {
        Scribble(plane.Info.hbmResolved, nRound);
        afRead.push_back(CpuOfCalls(CALLS, [&] { ReadPlainly(plane.Info.hbmResolved); }));
        afTurn.push_back(CpuOfCalls(1, [&] {
            preview.Follow();
            preview.render(&painted);
        }));
    }
    const std::string sName = std::string("Panels/preview of ") + size.pszName;
    ReportFigure((sName + ", a turn").c_str(), Median(afTurn), 0, "us", BenchGoal::NONE);
    const bool bMet = ReportFigure((sName + " over a plain read").c_str(), MedianRatio(afTurn, afRead), GOAL, "x",
                                   BenchGoal::AT_MOST);
    DeleteBitmap(plane.Info.hbmResolved);
    return bMet;
}

} // namespace

int main(int argc, char **argv)
{
    ClaimMainThread();
    const pid_t pidScreen = bench::StartScreen();
    bool bMet = true;
    {
        QApplication app(argc, argv);
        InstallDarkLook(&app);
        QApplication::setQuitOnLastWindowClosed(false);
        for (const Case &size : asCase)
            bMet &= ReportCase(size);
    }
    bench::StopScreen(pidScreen);
    return bMet ? 0 : 1;
}
