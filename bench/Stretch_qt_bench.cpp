// Stretch_qt_bench.cpp -- the stretched copy for the window, against the toolkit's painter and a plain copy
#include "bench/BenchReport.h"

#include "output/mixer/Stretch.h"
#include "platform/Bitmap.h"

#include <tbb/info.h>
#include <tbb/task_arena.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstring>
#include <string>

namespace {

constexpr unsigned ROUNDS = 41;

struct Picture {
    const char *pszName;
    i32 nWidth;
    i32 nHeight;
};

constexpr Picture HD = {"720p", 1280, 720};
constexpr Picture FULL_HD = {"1080p", 1920, 1080};
constexpr Picture UHD = {"4K", 3840, 2160};

HostBitmap *NoisePicture(const Picture &picture)
{
    HostBitmap *hbm = CreateBitmap(picture.nWidth, picture.nHeight);
    for (u64 i = 0; i < BitmapBytes(hbm) / 4; i++)
        BitmapPixels(hbm)[i] = static_cast<u32>(i) * 2654435761u | 0xFF000000u;
    return hbm;
}

// The target is an image of the window's, as the window has it.
QImage Target(const Picture &picture)
{
    QImage image(picture.nWidth, picture.nHeight, QImage::Format_RGB32);
    image.fill(Qt::black);
    return image;
}

void Stretch(QImage *pImage, const HostBitmap *hbm)
{
    StretchPicture({pImage->bits(), pImage->width(), pImage->height(), static_cast<u64>(pImage->bytesPerLine())}, hbm,
                   true);
}

std::string Label(const char *pszWhat, const Picture &to, int nThreads)
{
    return std::string("Stretch/") + pszWhat + " to " + to.pszName + (nThreads == 1 ? ", one thread" : ", all threads");
}

// Nearest pixels too: no smoothing, no blending.
void MeasureAgainstPainter(const Picture &to, int nThreads)
{
    HostBitmap *hbm = NoisePicture(HD);
    QImage ours = Target(to), theirs = Target(to);
    const QImage source(static_cast<const uchar *>(hbm->pBits), hbm->nWidth, hbm->nHeight, QImage::Format_RGB32);
    tbb::task_arena arena(nThreads);
    const auto [afOurs, afPainter] = TimeInterleaved(
        ROUNDS, 1, [&] { arena.execute([&] { Stretch(&ours, hbm); }); },
        [&] {
            QPainter painter(&theirs);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.drawImage(theirs.rect(), source);
        });
    ReportFigure(Label("720p over the painter,", to, nThreads).c_str(), MedianRatio(afOurs, afPainter), 0.5, "x",
                 BenchGoal::AT_MOST);
    DeleteBitmap(hbm);
}

void MeasureAgainstCopy(const Picture &to, int nThreads)
{
    HostBitmap *hbm = NoisePicture(to);
    QImage ours = Target(to), theirs = Target(to);
    tbb::task_arena arena(nThreads);
    const auto [afOurs, afCopy] = TimeInterleaved(
        ROUNDS, 1, [&] { arena.execute([&] { Stretch(&ours, hbm); }); },
        [&] {
            std::memcpy(theirs.bits(), hbm->pBits, BitmapBytes(hbm));
            KeepResult(theirs);
        });
    ReportFigure(Label("equal size over a plain copy,", to, nThreads).c_str(), MedianRatio(afOurs, afCopy), 1.0, "x",
                 BenchGoal::AT_MOST);
    DeleteBitmap(hbm);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    for (const int nThreads : {1, tbb::info::default_concurrency()})
        for (const Picture &to : {FULL_HD, UHD}) {
            MeasureAgainstPainter(to, nThreads);
            MeasureAgainstCopy(to, nThreads);
        }
    return 0;
}
