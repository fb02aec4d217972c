// Recording_bench.cpp -- what saving frames costs: the encoders, the queue before them, and the renderer as a whole
#include "bench/BenchEngine.h"
#include "bench/BenchFolder.h"
#include "bench/BenchReport.h"

#include "engine/FrameStep.h"
#include "engine/PresetManager.h"
#include "output/pictures/PictureFiles.h"
#include "output/pictures/PictureQueue.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/Text.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <png.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr i32 WIDTH = 1920;
constexpr i32 HEIGHT = 1080;
constexpr u32 ENCODER_ROUNDS = 24;
constexpr u32 QUEUE_ROUNDS = 16;
constexpr u32 QUEUE_PICTURES = 12;
constexpr u32 RENDER_ROUNDS = 9;
constexpr u32 RENDER_FRAMES = 60;
fs::path folder;

std::u16string PathOf(const std::string &sName)
{
    return FromUtf8((folder / sName).string());
}

[[noreturn]] void GiveUp(const char *pszWhat)
{
    std::fprintf(stderr, "%s\n", pszWhat);
    std::exit(1);
}

void StartEngine()
{
    StartBenchEngine(WIDTH, HEIGHT);
    SwitchPreset(MakeDefaultPreset, nullptr);
}

const HostBitmap *DrawFrame()
{
    SetFixedTick(TickCount() + 16);
    if (!RunFrameStep(CurrentPreset()))
        GiveUp("the default preset gives no frame");
    return *CurrentPreset()->phbmOutput;
}

// A frame of the default preset, as the mixer leaves it, with the grain of a film over it: noise of 2 levels either
// way on every channel, which no run of equal bytes survives.
HostBitmap *DrawNoisyFrame()
{
    HostBitmap *hbm = CreateBitmap(WIDTH, HEIGHT);
    for (u32 i = 0; i < 200; i++)
        DrawFrame();
    CopyBitmap(hbm, DrawFrame());
    u32 dwNoise = 1;
    for (u8 *p = static_cast<u8 *>(hbm->pBits), *pEnd = p + BitmapBytes(hbm); p < pEnd; p++) {
        dwNoise = dwNoise * 1664525u + 1013904223u;
        const int n = *p + static_cast<int>((dwNoise >> 16) % 5) - 2;
        *p = static_cast<u8>(std::clamp(n, 0, 255));
    }
    return hbm;
}

// By the fastest rounds: what others do to the caches and to the other half of the core only adds time.
template <typename Fn> double CallsASecond(Fn fn)
{
    std::vector<double> afSecond;
    for (u32 i = 0; i <= ENCODER_ROUNDS; i++) {
        const double fStart = ThreadSeconds();
        fn();
        if (i > 0)
            afSecond.push_back(ThreadSeconds() - fStart);
    }
    std::sort(afSecond.begin(), afSecond.end());
    afSecond.resize(ENCODER_ROUNDS / 4);
    return 1 / Median(afSecond);
}

double SavesASecond(const HostBitmap *hbm, const char *pszName, u32 nQuality)
{
    const std::u16string path = PathOf(pszName);
    return CallsASecond([&] {
        if (!SavePicture(hbm, path.c_str(), nQuality))
            GiveUp("a picture cannot be saved");
    });
}

double FileBytes(const char *pszName)
{
    return static_cast<double>(fs::file_size(folder / pszName));
}

// The reference: libpng at level 1, everything else as it comes.
void SaveByLibpng(const HostBitmap *hbm, const char *pszName)
{
    FILE *pFile = std::fopen((folder / pszName).c_str(), "wb");
    png_structp pPng = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop pInfo = png_create_info_struct(pPng);
    png_init_io(pPng, pFile);
    png_set_IHDR(pPng, pInfo, WIDTH, HEIGHT, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(pPng, 1);
    png_write_info(pPng, pInfo);
    png_set_bgr(pPng);
    png_set_filler(pPng, 0, PNG_FILLER_AFTER);
    for (i32 y = HEIGHT - 1; y >= 0; y--)
        png_write_row(pPng, reinterpret_cast<png_const_bytep>(BitmapPixels(hbm) + static_cast<size_t>(y) * WIDTH));
    png_write_end(pPng, pInfo);
    png_destroy_write_struct(&pPng, &pInfo);
    std::fclose(pFile);
}

void MeasureEncoders(const HostBitmap *hbm)
{
    ReportFigure("Recording/PNG, 1080p a second and worker", SavesASecond(hbm, "a.png", 95), 30, "1/s",
                 BenchGoal::AT_LEAST);
    ReportFigure("Recording/JPEG 95, 1080p a second and worker", SavesASecond(hbm, "a.jpg", 95), 75, "1/s",
                 BenchGoal::AT_LEAST);
    const double fLibpng = CallsASecond([&] { SaveByLibpng(hbm, "reference.png"); });
    ReportFigure("Recording/PNG size against libpng level 1", FileBytes("a.png") / FileBytes("reference.png"), 1, "x",
                 BenchGoal::AT_MOST);
    ReportFigure("Recording/libpng level 1, 1080p a second", fLibpng, 0, "1/s", BenchGoal::NONE);
    const std::pair<const char *, const char *> asOther[] = {{"Recording/GIF, 1080p a second and worker", "a.gif"},
                                                             {"Recording/TIFF, 1080p a second and worker", "a.tif"},
                                                             {"Recording/BMP, 1080p a second and worker", "a.bmp"},
                                                             {"Recording/PPM, 1080p a second and worker", "a.ppm"}};
    for (const auto &[pszFigure, pszName] : asOther)
        ReportFigure(pszFigure, SavesASecond(hbm, pszName, 95), 0, "1/s", BenchGoal::NONE);
}

void SaveBare(const HostBitmap *hbm, u32 nWorkers)
{
    std::vector<std::thread> workers;
    for (u32 i = 0; i < nWorkers; i++)
        workers.emplace_back([=] {
            for (u32 n = i; n < QUEUE_PICTURES; n += nWorkers)
                SavePicture(hbm, PathOf("q-" + std::to_string(n) + ".png").c_str(), 95);
        });
    for (std::thread &worker : workers)
        worker.join();
}

void SaveThroughQueue(const HostBitmap *hbm, PictureQueue *pQueue)
{
    for (u32 n = 0; n < QUEUE_PICTURES; n++)
        SubmitPicture(pQueue, hbm, PathOf("q-" + std::to_string(n) + ".png"), 95);
    FinishPictures(pQueue);
}

void MeasureQueue(const HostBitmap *hbm)
{
    const u32 nWorkers = std::max(std::thread::hardware_concurrency(), 1u);
    PictureQueueOptions options = {};
    options.nWorkers = nWorkers;
    PictureQueue *pQueue = StartPictureQueue(options);
    const auto times = TimeInterleaved(
        QUEUE_ROUNDS, 1, [&] { SaveBare(hbm, nWorkers); }, [&] { SaveThroughQueue(hbm, pQueue); });
    StopPictureQueue(pQueue);
    ReportFigure("Recording/queue against the bare encoder", MedianRatio(times[0], times[1]), 0.9, "x",
                 BenchGoal::AT_LEAST);
}

// What the renderer does, in turn with and without its pictures.
void MeasureRenderer()
{
    PictureQueue *pQueue = StartPictureQueue({});
    u32 nFrame = 0;
    const auto times = TimeInterleaved(
        RENDER_ROUNDS, 1,
        [&] {
            for (u32 i = 0; i < RENDER_FRAMES; i++)
                DrawFrame();
        },
        [&] {
            for (u32 i = 0; i < RENDER_FRAMES; i++)
                SubmitPicture(pQueue, DrawFrame(), PathOf(std::to_string(nFrame++ % 64) + ".ppm"), 95);
            FinishPictures(pQueue);
        });
    StopPictureQueue(pQueue);
    ReportFigure("Recording/renderer to PPM against the engine alone", MedianRatio(times[0], times[1]), 0.9, "x",
                 BenchGoal::AT_LEAST);
    ReportFigure("Recording/engine alone, default preset at 1080p", RENDER_FRAMES * 1e6 / Median(times[0]), 0, "1/s",
                 BenchGoal::NONE);
}

} // namespace

int main()
{
    const BenchFolder own(FolderPlace::Memory); // disks are not what is measured
    folder = own.Path();
    StartEngine();
    HostBitmap *hbm = DrawNoisyFrame();
    MeasureEncoders(hbm);
    MeasureQueue(hbm);
    MeasureRenderer();
    DeleteBitmap(hbm);
    ShutDownHeadless();
    return 0;
}
