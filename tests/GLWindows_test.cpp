// GLWindows_test.cpp -- hidden OpenGL windows, contexts that change threads, the start-up test
#include "modules/HiddenGLWindows.h"
#include "modules/ModuleRegistry.h"
#include "modules/OpenGLTest.h"
#include "platform/Bitmap.h"
#include "platform/GLWindow.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"

#include <EGL/egl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <set>
#include <thread>
#include <vector>

namespace {

class GLWindows : public testing::Test {
  protected:
    void SetUp() override
    {
        GlobalSettings.nBufferWidth = 48;
        GlobalSettings.nBufferHeight = 32;
        HostGLWindow *hwndGL = CreateGLWindow(1, 1);
        if (!hwndGL)
            GTEST_SKIP() << "this machine has no OpenGL: nothing of this test was run";
        DestroyGLWindow(hwndGL);
    }
    void TearDown() override
    {
        UnloadModules();
        CloseGLDisplay();
        GlobalSettings.nBufferWidth = GlobalSettings.nBufferHeight = 0;
    }
};

void OnThread(const std::function<void()> &fn)
{
    std::thread([&] {
        fn();
        ReleaseGLThread();
    }).join();
}

EGLint SurfaceValue(const HostGLWindow *hwndGL, EGLint nWhat)
{
    EGLint n = -1;
    eglQuerySurface(hwndGL->pDisplay, hwndGL->pSurface, nWhat, &n);
    return n;
}

bool MakeCurrentHere(const HostGLWindow *hwndGL, void *pContext)
{
    return eglMakeCurrent(hwndGL->pDisplay, hwndGL->pSurface, hwndGL->pSurface, pContext);
}

// An instance of the test module with the plane that it draws on.
struct Instance {
    const ModuleFunctions *pmf;
    void *pvContext;
    PlaneInfo pi;

    explicit Instance(const ModuleRecord *pmr) : pmf(&pmr->mf), pvContext(nullptr), pi()
    {
        pi.hwndGL = CreateHiddenGLWindow();
        pmf->pfnBuildControlStructure(&pvContext, &pi, nullptr, nullptr);
    }
    ~Instance()
    {
        CleanUp();
        pmf->pfnDestroyControlStructure(pvContext);
        DestroyHiddenGLWindow(pi.hwndGL);
    }
    Instance(const Instance &) = delete;
    Instance &operator=(const Instance &) = delete;

    void BringUp(i32 nWidth, i32 nHeight)
    {
        pi.nWidth = nWidth;
        pi.nHeight = nHeight;
        pi.hbmDraw = CreateBitmap(nWidth, nHeight);
        Initialize();
    }
    void CleanUp()
    {
        pmf->pfnCleanUp(pvContext);
        ReleaseCurrentGL();
        DeleteBitmap(pi.hbmDraw);
        pi.hbmDraw = nullptr;
    }
    void Initialize()
    {
        pmf->pfnInitialize(pvContext, &pi);
        ReleaseCurrentGL();
    }
    void Draw()
    {
        pmf->pfnDrawFrame(pvContext, &pi);
        ReleaseCurrentGL();
    }
};

// Pixels that differ by more than rounding from what the module says that it draws. The edge of the triangle is the
// driver's business.
int WrongPixels(const HostBitmap *hbm, u32 nFrames)
{
    int nWrong = 0;
    for (i32 y = 0; y < hbm->nHeight; y++)
        for (i32 x = 0; x < hbm->nWidth; x++) {
            const double fx = (x + 0.5) / hbm->nWidth, fy = (y + 0.5) / hbm->nHeight;
            const double fEdge = (fx + fy - 1) * std::min(hbm->nWidth, hbm->nHeight);
            const double afWanted[3] = {fEdge < 0 ? double(nFrames) : 0x99, fEdge < 0 ? fy * 255 : 0x66,
                                        fEdge < 0 ? fx * 255 : 0x33};
            const u32 dwPixel = BitmapPixels(hbm)[y * hbm->nWidth + x];
            for (int i = 0; i < 3 && std::abs(fEdge) > 1; i++)
                nWrong += std::abs(static_cast<int>(dwPixel >> (8 * i) & 0xFF) - afWanted[i]) > 1;
        }
    return nWrong;
}

const ModuleRecord *LoadTriangle()
{
    LoadModule(FromUtf8(TEST_MODULE_FOLDER "/GLTriangle.dll"));
    return FindModuleRecord(u"GLTriangle.dll");
}

} // namespace

TEST_F(GLWindows, TheTableHoldsEightyAndGivesAFreedPlaceAgain)
{
    std::vector<HostGLWindow *> ahwnd;
    for (u32 i = 0; i < HIDDEN_GL_WINDOWS_MAX; i++)
        ahwnd.push_back(CreateHiddenGLWindow());
    EXPECT_EQ(std::count(ahwnd.begin(), ahwnd.end(), nullptr), 0);
    EXPECT_EQ(std::set(ahwnd.begin(), ahwnd.end()).size(), 80u);
    EXPECT_EQ(CreateHiddenGLWindow(), nullptr);

    DestroyHiddenGLWindow(nullptr);
    EXPECT_EQ(CreateHiddenGLWindow(), nullptr);
    DestroyHiddenGLWindow(ahwnd[17]);
    ahwnd[17] = CreateHiddenGLWindow();
    EXPECT_NE(ahwnd[17], nullptr);
    EXPECT_EQ(CreateHiddenGLWindow(), nullptr);
    for (HostGLWindow *hwndGL : ahwnd)
        DestroyHiddenGLWindow(hwndGL);
}

TEST_F(GLWindows, AWindowHasTheBufferSizeAndNoDepthBuffer)
{
    HostGLWindow *hwndGL = CreateHiddenGLWindow();
    ASSERT_NE(hwndGL, nullptr);
    EXPECT_EQ(hwndGL->cbSize, sizeof(HostGLWindow));
    EXPECT_EQ(hwndGL->nWidth, 48);
    EXPECT_EQ(hwndGL->nHeight, 32);
    EXPECT_EQ(SurfaceValue(hwndGL, EGL_WIDTH), 48);
    EXPECT_EQ(SurfaceValue(hwndGL, EGL_HEIGHT), 32);
    const auto config = [&](EGLint nWhat) {
        EGLint n = -1;
        eglGetConfigAttrib(hwndGL->pDisplay, hwndGL->pConfig, nWhat, &n);
        return n;
    };
    EXPECT_EQ(config(EGL_ALPHA_SIZE), 8);
    EXPECT_EQ(config(EGL_BUFFER_SIZE), 32);
    EXPECT_EQ(config(EGL_DEPTH_SIZE), 0);
    EXPECT_EQ(config(EGL_SAMPLES), 0);
    DestroyHiddenGLWindow(hwndGL);
}

TEST_F(GLWindows, AResizeKeepsEveryRecordInPlaceAndRenewsItsSurface)
{
    HostGLWindow *ahwnd[2] = {CreateHiddenGLWindow(), CreateHiddenGLWindow()};
    for (const auto &[nWidth, nHeight] : {std::pair(7680, 4320), std::pair(128, 8192), std::pair(129, 131)}) {
        ResizeHiddenGLWindows(nWidth, nHeight);
        for (const HostGLWindow *hwndGL : ahwnd) {
            ASSERT_NE(hwndGL, nullptr);
            EXPECT_EQ(hwndGL->nWidth, nWidth);
            EXPECT_EQ(SurfaceValue(hwndGL, EGL_WIDTH), nWidth);
            EXPECT_EQ(SurfaceValue(hwndGL, EGL_HEIGHT), nHeight);
        }
    }
    ResizeHiddenGLWindows(0, 0); // no buffer yet: the smallest surface that there is
    EXPECT_EQ(SurfaceValue(ahwnd[1], EGL_WIDTH), 1);
    for (HostGLWindow *hwndGL : ahwnd)
        DestroyHiddenGLWindow(hwndGL);
}

TEST_F(GLWindows, AContextGoesToAnotherThreadOnlyOnceItIsReleased)
{
    HostGLWindow *hwndGL = CreateHiddenGLWindow();
    void *pContext = MakeTestContext(hwndGL);
    ASSERT_NE(pContext, nullptr);
    OnThread([&] { EXPECT_FALSE(MakeCurrentHere(hwndGL, pContext)); });
    ReleaseCurrentGL();
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    OnThread([&] {
        EXPECT_TRUE(MakeCurrentHere(hwndGL, pContext));
        ReleaseCurrentGL();
        OnThread([&] { EXPECT_TRUE(MakeCurrentHere(hwndGL, pContext)); }); // released by the thread's end
        EXPECT_TRUE(MakeCurrentHere(hwndGL, pContext));
    });
    EXPECT_TRUE(MakeCurrentHere(hwndGL, pContext));
    DestroyTestContext(hwndGL, pContext);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    DestroyHiddenGLWindow(hwndGL);
}

TEST_F(GLWindows, AModuleThatKeepsItsContextDrawsOnEveryThread)
{
    const ModuleRecord *pmr = LoadTriangle();
    ASSERT_NE(pmr, nullptr);
    EXPECT_EQ(pmr->md.bNeedsOpenGL, 1u);
    Instance instance(pmr);
    instance.BringUp(61, 37);
    instance.Draw();
    EXPECT_EQ(WrongPixels(instance.pi.hbmDraw, 1), 0);
    for (u32 nFrames = 2; nFrames < 5; nFrames++) {
        OnThread([&] { instance.Draw(); });
        EXPECT_EQ(WrongPixels(instance.pi.hbmDraw, nFrames), 0) << nFrames;
    }
    OnThread([&] { instance.Initialize(); }); // a reset comes on the plane's thread
    OnThread([&] { instance.Draw(); });
    EXPECT_EQ(WrongPixels(instance.pi.hbmDraw, 1), 0);

    instance.CleanUp();
    ResizeHiddenGLWindows(200, 3);
    instance.BringUp(200, 3);
    OnThread([&] { instance.Draw(); });
    EXPECT_EQ(WrongPixels(instance.pi.hbmDraw, 1), 0);
}

TEST_F(GLWindows, InstancesDrawSideBySideOnThreadsOfTheirOwn)
{
    const ModuleRecord *pmr = LoadTriangle();
    ASSERT_NE(pmr, nullptr);
    Instance first(pmr), second(pmr);
    first.BringUp(40, 30);
    second.BringUp(30, 40);
    std::vector<std::thread> threads;
    for (Instance *p : {&first, &second})
        threads.emplace_back([p] {
            for (int i = 0; i < 20; i++)
                p->Draw();
            ReleaseGLThread();
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(WrongPixels(first.pi.hbmDraw, 20), 0);
    EXPECT_EQ(WrongPixels(second.pi.hbmDraw, 20), 0);
}

TEST_F(GLWindows, ATestThatWasPutOffIsMadeWhenAModuleDependsOnIt)
{
    const ModuleRecord *pmr = LoadTriangle();
    ASSERT_NE(pmr, nullptr);
    ModuleRecord plain = *pmr;
    plain.md.bNeedsOpenGL = 0;
    OpenGLVersion = "Unknown";
    PutOffOpenGLTest();
    EXPECT_TRUE(ModuleIsAvailable(plain));
    EXPECT_EQ(OpenGLVersion, "Unknown");
    EXPECT_TRUE(ModuleIsAvailable(*pmr));
    EXPECT_NE(OpenGLVersion, "Unknown");
    OpenGLVersion = "Unknown";
    FinishOpenGLTest(); // it has been made
    EXPECT_EQ(OpenGLVersion, "Unknown");
}

TEST_F(GLWindows, TheStartUpTestReadsTheVersionAndLeavesNothingBehind)
{
    const ModuleRecord *pmr = LoadTriangle();
    OpenGLVersion = "Unknown";
    GlobalSettings.nBufferWidth = GlobalSettings.nBufferHeight = 0; // at start there is no buffer yet
    ProbeOpenGL();
    EXPECT_EQ(bOpenGLAvailable, 1u) << OpenGLVersion;
    EXPECT_GE(std::atoi(OpenGLVersion.c_str()), 2) << OpenGLVersion;
    EXPECT_EQ(pmr->md.bUnavailable, 0u);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);

    std::vector<HostGLWindow *> ahwnd;
    while (HostGLWindow *hwndGL = CreateHiddenGLWindow())
        ahwnd.push_back(hwndGL);
    EXPECT_EQ(ahwnd.size(), 80u);
    bOpenGLAvailable = 0;
    ProbeOpenGL(); // with a full table on a window of its own
    EXPECT_EQ(bOpenGLAvailable, 1u);
    for (HostGLWindow *hwndGL : ahwnd)
        DestroyHiddenGLWindow(hwndGL);
    RecordProperty("OpenGL", OpenGLVersion);
    std::printf("ran on OpenGL %s\n", OpenGLVersion.c_str());
}

namespace {

// Runs the start-up test in a new process, since the driver reads its environment once. Nothing may be printed.
void ExpectProbe(u32 bWanted, const char *pszVersionBegin)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const ModuleRecord *pmr = LoadTriangle();
            ProbeOpenGL();
            ReleaseCurrentGL();
            ReleaseGLThread();
            const bool bNoWindow = bWanted || OpenGLVersion != "Unknown" || !CreateGLWindow(8, 8);
            const bool bMarked = pmr && (pmr->md.bUnavailable == 0) == (bWanted != 0);
            const bool bVersion = OpenGLVersion.starts_with(pszVersionBegin);
            CloseGLDisplay();
            std::_Exit(bOpenGLAvailable == bWanted && bNoWindow && bMarked && bVersion ? 0 : 1);
        },
        testing::ExitedWithCode(0), "^$");
}

struct Variable {
    const char *pszName;
    Variable(const char *psz, const char *pszValue) : pszName(psz)
    {
        setenv(psz, pszValue, 1);
    }
    ~Variable()
    {
        unsetenv(pszName);
    }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;
};

} // namespace

TEST(OpenGLTest, AMachineWithoutADriverIsSilentlyWithoutOpenGL)
{
    const Variable vendors("__EGL_VENDOR_LIBRARY_FILENAMES", "/nonexistent/none.json");
    ExpectProbe(0, "Unknown");
}

TEST(OpenGLTest, ADriverThatCannotOpenADisplayIsSilentlyPassedOver)
{
    const Variable drivers("LIBGL_DRIVERS_PATH", "/nonexistent");
    const Variable software("LIBGL_ALWAYS_SOFTWARE", "true");
    const Variable renderer("GALLIUM_DRIVER", "none");
    const Variable display("DISPLAY", "");
    const Variable wayland("WAYLAND_DISPLAY", "");
    const Variable vendors("__EGL_VENDOR_LIBRARY_FILENAMES", "/usr/share/glvnd/egl_vendor.d/50_mesa.json");
    ExpectProbe(0, "Unknown");
}

TEST(OpenGLTest, AnOldDriverKeepsItsVersionTextAndDisablesTheModules)
{
    ProbeOpenGL();
    CloseGLDisplay();
    if (OpenGLVersion.find("Mesa") == std::string::npos)
        GTEST_SKIP() << "only Mesa can play an old driver; this machine has OpenGL " << OpenGLVersion;
    {
        const Variable version("MESA_GL_VERSION_OVERRIDE", "1.4");
        ExpectProbe(0, "1.4");
    }
    const Variable version("MESA_GL_VERSION_OVERRIDE", "2.1");
    ExpectProbe(1, "2.1");
    const Variable extensions("MESA_EXTENSION_OVERRIDE", "-GL_ARB_framebuffer_object");
    ExpectProbe(0, "2.1");
}
