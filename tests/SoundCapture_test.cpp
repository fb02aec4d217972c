// SoundCapture_test.cpp -- the sound monitor library against a real sound server
#include "include/sound.h"
#include "tests/SoundServer.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <atomic>
#include <cstring>

#ifdef __SANITIZE_THREAD__
// The client library recycles its packets between threads through lock-free lists, which the sanitizer cannot see into
// because the library is not instrumented. These functions call nothing of ours, so nothing of ours is hidden.
extern "C" const char *__tsan_default_suppressions()
{
    return "race:pa_tagstruct_\nrace:pa_packet_\nrace:pa_iochannel_\n";
}
#endif

namespace {

constexpr const char *LIBRARY = STOCK_MODULE_FOLDER "/SoundLevelDLL.dll";

struct Library {
    void *pHandle;
    AMStartVolumeMonitorFn pfnStart;
    AMStopVolumeMonitorFn pfnStop;
    AMGetVolumeLevelFn pfnGetLevel;
    AMIsQuietFn pfnIsQuiet;
    AMSetHomingSamplesFn pfnSetHoming;
    AMSetSimSoundTickScaleFn pfnSetScale;
    AMDescribeSourceFn pfnDescribe;

    Library() : pHandle(dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL))
    {
        if (!pHandle) {
            ADD_FAILURE() << dlerror();
            std::abort();
        }
        Find(&pfnStart, "AMStartVolumeMonitor");
        Find(&pfnStop, "AMStopVolumeMonitor");
        Find(&pfnGetLevel, "AMGetVolumeLevel");
        Find(&pfnIsQuiet, "AMIsQuiet");
        Find(&pfnSetHoming, "AMSetHomingSamples");
        Find(&pfnSetScale, "AMSetSimSoundTickScale");
        Find(&pfnDescribe, "AMDescribeSource");
    }
    ~Library()
    {
        dlclose(pHandle);
    }
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

  private:
    template <typename Fn> void Find(Fn *ppfn, const char *pszName)
    {
        *ppfn = reinterpret_cast<Fn>(dlsym(pHandle, pszName));
        EXPECT_NE(*ppfn, nullptr) << pszName;
    }
};

// A running monitor, stopped and freed as the host does it.
struct Monitor {
    const Library &lib;
    void *hMonitor;

    explicit Monitor(const Library &library) : lib(library), hMonitor(library.pfnStart(20))
    {
    }
    ~Monitor()
    {
        Stop();
    }
    Monitor(const Monitor &) = delete;
    Monitor &operator=(const Monitor &) = delete;

    void Stop()
    {
        lib.pfnStop(hMonitor);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        std::free(hMonitor);
        hMonitor = nullptr;
    }

    f32 Level(i32 nVolumeType) const
    {
        f32 fLevel = -1;
        EXPECT_TRUE(lib.pfnGetLevel(hMonitor, nVolumeType, &fLevel));
        EXPECT_TRUE(fLevel >= 0 && fLevel <= 1) << fLevel;
        return fLevel;
    }

    bool Hears() const
    {
        return Level(VOLUMETYPE_DYNAMIC) > 0.5f;
    }
    bool HearsNothing() const
    {
        return lib.pfnIsQuiet(hMonitor) && Level(VOLUMETYPE_RAW) == 0;
    }

    std::string Source() const
    {
        char szText[200] = {};
        lib.pfnDescribe(hMonitor, szText, sizeof szText);
        return szText;
    }
    bool ListensTo(const char *pszSource) const
    {
        return Source().find(pszSource) != std::string::npos;
    }
};

// Threads of the library; the test's own and a sanitizer's do not count.
size_t CountThreads()
{
    size_t nThreads = 0;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string sName;
        std::ifstream(task.path() / "comm") >> sName;
        nThreads += sName == "vd-sound";
    }
    return nThreads;
}

void ExpectSimulatedLevelOnly(const Monitor &monitor)
{
    EXPECT_TRUE(monitor.HearsNothing());
    EXPECT_EQ(monitor.Level(VOLUMETYPE_EXPANDED), 0);
    EXPECT_EQ(monitor.Level(VOLUMETYPE_DYNAMIC), 0);
    const f32 fFirst = monitor.Level(VOLUMETYPE_DYNAMIC_SIMULATED);
    EXPECT_TRUE(Eventually([&] { return std::fabs(monitor.Level(VOLUMETYPE_DYNAMIC_SIMULATED) - fFirst) > 0.1f; }))
        << "the simulated level stands still";
}

// The humming source hands out its sound every two seconds only.
void ExpectNothingHeardForAWhile(const Monitor &monitor)
{
    for (int i = 0; i < 200; i++) {
        ASSERT_TRUE(monitor.HearsNothing());
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

class SoundCapture : public testing::Test {
  protected:
    void SetUp() override
    {
        if (!SoundServer::IsInstalled())
            GTEST_SKIP() << "pulseaudio and its tools are not installed";
    }

    SoundServer server{"capture"};
};

} // namespace

TEST_F(SoundCapture, WithoutAServerTheSimulatedLevelComesAndNothingWaits)
{
    Library lib;
    Monitor monitor(lib);
    ExpectSimulatedLevelOnly(monitor);
    EXPECT_EQ(CountThreads(), 1u);
    EXPECT_TRUE(Eventually([&] { return monitor.ListensTo("no sound server answers"); })) << monitor.Source();
    char szText[8];
    EXPECT_FALSE(lib.pfnDescribe(nullptr, szText, sizeof szText));
    EXPECT_STREQ(szText, "nothing");
    monitor.Stop();
    EXPECT_EQ(CountThreads(), 0u);
}

TEST_F(SoundCapture, AServerThatNeverAnswersHoldsNothingUp)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(server.Socket().size(), sizeof address.sun_path);
    std::strcpy(address.sun_path, server.Socket().c_str());
    const int nSocket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(nSocket, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(listen(nSocket, 10), 0);
    {
        Library lib;
        Monitor monitor(lib);
        ExpectSimulatedLevelOnly(monitor);
        EXPECT_TRUE(monitor.ListensTo("waiting for the sound server"));
        char szText[200];
        EXPECT_FALSE(lib.pfnDescribe(nullptr, szText, sizeof szText));
    }
    close(nSocket);
}

TEST_F(SoundCapture, TheLevelFollowsTheToneOfTheDefaultOutput)
{
    ASSERT_TRUE(server.StartServer());
    Library lib;
    Monitor monitor(lib);
    ASSERT_TRUE(Eventually([&] { return monitor.ListensTo("a.monitor"); })) << monitor.Source();
    ExpectSimulatedLevelOnly(monitor);

    server.PlayTone("a", 0.5);
    ASSERT_TRUE(Eventually([&] { return monitor.Hears(); }));
    EXPECT_TRUE(Eventually([&] { return std::fabs(monitor.Level(VOLUMETYPE_RAW) - 0.3536f) < 0.02f; }));
    EXPECT_TRUE(Eventually([&] { return monitor.Level(VOLUMETYPE_EXPANDED) > 1.2f * monitor.Level(VOLUMETYPE_RAW); }));
    EXPECT_TRUE(Eventually([&] { return !lib.pfnIsQuiet(monitor.hMonitor); }));
    EXPECT_TRUE(Eventually([&] {
        return std::fabs(monitor.Level(VOLUMETYPE_DYNAMIC_SIMULATED) - monitor.Level(VOLUMETYPE_DYNAMIC)) < 0.001f;
    }));

    server.StopTone();
    EXPECT_TRUE(Eventually([&] { return monitor.HearsNothing(); }));
}

TEST_F(SoundCapture, TheMonitorFollowsAChangeOfTheDefaultOutput)
{
    ASSERT_TRUE(server.StartServer());
    Library lib;
    Monitor monitor(lib);
    server.PlayTone("b", 0.5);
    ASSERT_TRUE(Eventually([&] { return monitor.ListensTo("a.monitor"); }));
    EXPECT_TRUE(monitor.HearsNothing());
    ASSERT_TRUE(server.Control({"set-default-sink", "b"}));
    EXPECT_TRUE(Eventually([&] { return monitor.ListensTo("b.monitor") && monitor.Hears(); })) << monitor.Source();
    ASSERT_TRUE(server.Control({"set-default-sink", "a"}));
    EXPECT_TRUE(Eventually([&] { return monitor.ListensTo("a.monitor") && monitor.HearsNothing(); }));
}

TEST_F(SoundCapture, TheMonitorComesBackWithTheServer)
{
    Library lib;
    Monitor monitor(lib); // before there is any server
    ASSERT_TRUE(server.StartServer());
    for (int nRound = 0; nRound < 2; nRound++) {
        server.PlayTone("a", 0.5);
        EXPECT_TRUE(Eventually([&] { return monitor.Hears(); })) << monitor.Source();
        server.StopServer();
        EXPECT_TRUE(Eventually([&] { return monitor.HearsNothing(); }));
        ExpectSimulatedLevelOnly(monitor);
        ASSERT_TRUE(server.StartServer());
    }
    EXPECT_TRUE(Eventually([&] { return monitor.ListensTo("a.monitor"); })) << monitor.Source();
}

// The microphone here is a source that hums. It is the default source, somebody tries to move the stream to it, and it
// is all that is left when the outputs go.
TEST_F(SoundCapture, AMicrophoneIsNeverListenedTo)
{
    ASSERT_TRUE(server.StartServer());
    ASSERT_TRUE(server.Control({"load-module", "module-sine-source", "source_name=microphone"}));
    ASSERT_TRUE(server.Control({"set-default-source", "microphone"}));
    Library lib;
    Monitor monitor(lib);
    ASSERT_TRUE(Eventually([&] { return monitor.ListensTo("a.monitor"); })) << monitor.Source();
    ASSERT_TRUE(server.Shell("pactl list short source-outputs | grep -q ."));
    server.Shell("pactl move-source-output $(pactl list short source-outputs | cut -f1) microphone");
    ExpectNothingHeardForAWhile(monitor);
    EXPECT_TRUE(monitor.ListensTo("a.monitor")) << monitor.Source();
    ASSERT_TRUE(server.Control({"unload-module", "module-null-sink"}));
    ASSERT_TRUE(Eventually([&] { return monitor.ListensTo("no output"); })) << monitor.Source();
    ExpectNothingHeardForAWhile(monitor);
    ASSERT_TRUE(server.Control({"load-module", "module-null-sink", "sink_name=late"}));
    EXPECT_TRUE(Eventually([&] { return monitor.ListensTo("late.monitor"); })) << monitor.Source();
}

TEST_F(SoundCapture, StopsAtAnyMomentWithoutLeavingAThreadOrTheLibrary)
{
    ASSERT_TRUE(server.StartServer());
    for (int nDelayMs : {0, 0, 1, 2, 3, 5, 8, 13, 21, 34, 200}) {
        {
            Library lib;
            Monitor first(lib), second(lib);
            std::this_thread::sleep_for(std::chrono::milliseconds(nDelayMs));
            void *hStopped = first.hMonitor;
            lib.pfnStop(hStopped); // twice: the second time from Stop
            f32 fLevel = 0;
            EXPECT_FALSE(lib.pfnGetLevel(hStopped, VOLUMETYPE_RAW, &fLevel));
            first.Stop();
            second.Level(VOLUMETYPE_RAW);
        }
        EXPECT_EQ(CountThreads(), 0u);
        EXPECT_EQ(dlopen(LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr);
    }
}

TEST_F(SoundCapture, AllExportsWorkFromSeveralThreadsWhileSoundComes)
{
    ASSERT_TRUE(server.StartServer());
    Library lib;
    Monitor monitor(lib);
    server.PlayTone("a", 0.5);
    ASSERT_TRUE(Eventually([&] { return monitor.Hears(); }));
    std::atomic<bool> bEnd{false};
    std::vector<std::thread> aThread;
    for (i32 nType = 0; nType < 4; nType++)
        aThread.emplace_back([&, nType] {
            while (!bEnd) {
                monitor.Level(nType);
                monitor.lib.pfnIsQuiet(monitor.hMonitor);
            }
        });
    for (u32 i = 0; i < 300; i++) {
        lib.pfnSetScale(monitor.hMonitor, i); // some of them out of range
        lib.pfnSetHoming(monitor.hMonitor, i * i * i * i);
        monitor.Source();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    bEnd = true;
    for (std::thread &thread : aThread)
        thread.join();
}

TEST(SoundExports, ANullMonitorIsRefused)
{
    Library lib;
    f32 fLevel = 5;
    EXPECT_FALSE(lib.pfnGetLevel(nullptr, VOLUMETYPE_RAW, &fLevel));
    EXPECT_EQ(fLevel, 5);
    EXPECT_TRUE(lib.pfnIsQuiet(nullptr));
    lib.pfnSetHoming(nullptr, 100);
    lib.pfnSetScale(nullptr, 20);
    lib.pfnStop(nullptr);
    EXPECT_FALSE(lib.pfnDescribe(nullptr, nullptr, 10));
}
