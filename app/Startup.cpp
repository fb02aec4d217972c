// Startup.cpp -- the life of the process: what comes up, in which order, and what goes down
#include "app/Startup.h"

#include "app/GlobalsFile.h"
#include "app/SettingsTable.h"
#include "app/SharedStatus.h"
#include "app/Steps.h"
#include "engine/BufferSize.h"
#include "engine/PlaneThreads.h"
#include "engine/PresetDocument.h"
#include "engine/PresetManager.h"
#include "library/Favorites.h"
#include "library/PresetLibrary.h"
#include "library/PresetScan.h"
#include "modules/ModuleRegistry.h"
#include "modules/OpenGLTest.h"
#include "modules/ShaderList.h"
#include "modules/SoundMonitor.h"
#include "output/FrameStats.h"
#include "output/ModuleMessages.h"
#include "output/VisualsCommands.h"
#include "output/mixer/MixAccelerator.h"
#include "output/mixer/PlaneMixer.h"
#include "platform/AtomicFile.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/GLWindow.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/Random.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"
#include "toolkit/Meters.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

const StartOptions *pOptions = nullptr; // during StartCore and StartHeadless
std::atomic<u64> dwTimerIdNext{69};
bool bOpenGLTestPutOff = false;
bool bAcceleratorsPending = false;

u32 FindFolders()
{
    InitFolders({{}, pOptions->data, pOptions->modules});
    // Before any thread runs: the environment must not change under one that reads it.
    SetVariable("FOLDER_SHADERINCLUDE", JoinPath(FolderPath(PATH_SHADERS), u"Include"));
    SetVariableIfUnset("EGL_LOG_LEVEL", u"fatal");
    return 1;
}

// A headless run touches no file but those named: not the graphics driver's cache either.
u32 KeepDriverCacheShut()
{
    SetVariableIfUnset("MESA_SHADER_CACHE_DISABLE", u"true");
    SetVariableIfUnset("__GL_SHADER_DISK_CACHE", u"0");
    return 1;
}

u32 SeedRandom()
{
    const u64 qwTick = TickCount();
    const u64 t = static_cast<u32>(qwTick);
    SeedFallbackRandom(static_cast<u32>(qwTick * (t + 157) * (t + 10567629)) & 0xFFFF);
    return 1;
}

u32 SetDefaults()
{
    SetDefaultSettings();
    return 1;
}

u32 ReadStoredSettings()
{
    SetSaveFolder(JoinPath(FolderPath(PATH_DATA), u".saving"));
    ReadGlobals(&GlobalSettings);
    SetUpFrameThickness();
    GlobalSettings.pfnShowMessage = ShowModuleMessage;
    return 1;
}

// After the settings, which zero the record that holds its address.
u32 AllocateSoundFrame()
{
    GlobalSettings.pSound = static_cast<SoundFrame *>(std::calloc(1, sizeof(SoundFrame)));
    return GlobalSettings.pSound != nullptr;
}

// Looking for a graphics card loads its driver: it waits until the first frame stands on the screen. Until then the
// processor mixes.
u32 PutOffAccelerators()
{
    bAcceleratorsPending = true;
    return 1;
}

u32 EmptyMeters()
{
    ClearPeakStores();
    return 1;
}

u32 OpenSharedBlock()
{
    return OpenSharedStatus();
}

u32 BindSound()
{
    BindSoundMonitor(&GlobalSettings.Monitor);
    SetMonitorTimeScale(GlobalSettings.TimeScale);
    return 1;
}

u32 LoadModules()
{
    LoadModuleFolder();
    if (ModuleCount() == 0)
        AddNotice("no module was found in " + ToUtf8(FolderPath(PATH_MODULES)) +
                  ": there is nothing that could draw a picture");
    return 1;
}

// The test loads a graphics driver, which takes longer than all other steps together. It waits until the first frame
// stands on the screen, unless the first preset depends on its outcome.
u32 PutOffOpenGL()
{
    PutOffOpenGLTest();
    bOpenGLTestPutOff = true;
    return 1;
}

u32 TestOpenGL()
{
    if (AnyModuleNeedsOpenGL())
        ProbeOpenGL();
    return 1;
}

u32 OpenPresets()
{
    OpenPresetLibrary(FolderPath(PATH_PRESETS), FolderPath(PATH_FAVORITES));
    const std::string sLeftOut = DescribePresetsLeftOut();
    if (!sLeftOut.empty())
        AddNotice(sLeftOut);
    return 1;
}

// Before the scan, so that no change falls between the two.
u32 StartPresetWatch()
{
    if (!WatchPresets() && FolderExists(FolderPath(PATH_PRESETS)))
        AddNotice("changes in " + ToUtf8(FolderPath(PATH_PRESETS)) +
                  " will show at the next start only: the system has no folder watch to give");
    return 1;
}

u32 StartPresetScan()
{
    ScanPresets();
    return 1;
}

// The table was made as if all modules could be used: which presets can run here is found out anew.
void ReopenPresets()
{
    FreePresetLibrary();
    OpenPresetLibrary(FolderPath(PATH_PRESETS), FolderPath(PATH_FAVORITES));
    WatchPresets();
    ScanPresets();
}

// clang-format off
constexpr Step asStartCore[] = {
    {"folders", FindFolders},
    {"random numbers", SeedRandom},
    {"default settings", SetDefaults},
    {"sound block", AllocateSoundFrame},
    {"accelerators", PutOffAccelerators},
    {"stored settings", ReadStoredSettings},
    {"shared block", OpenSharedBlock},
    {"sound monitor", BindSound},
    {"meters", EmptyMeters},
    {"modules", LoadModules},
    {"OpenGL test", PutOffOpenGL},
    {"preset library", OpenPresets},
    {"preset watch", StartPresetWatch},
    {"preset scan", StartPresetScan},
};

constexpr Step asStartHeadless[] = {
    {"driver cache", KeepDriverCacheShut},
    {"folders", FindFolders},
    {"default settings", SetDefaults},
    {"sound block", AllocateSoundFrame},
    {"modules", LoadModules},
    {"OpenGL test", TestOpenGL},
};
// clang-format on

u32 DestroyPreset()
{
    SwitchPreset(nullptr, nullptr);
    return 1;
}

u32 StopSound()
{
    UnbindSoundMonitor(&GlobalSettings.Monitor);
    return 1;
}

u32 FreeSoundFrame()
{
    if (!AnyThreadIsStuck())
        std::free(GlobalSettings.pSound);
    GlobalSettings.pSound = nullptr;
    return 1;
}

u32 WriteFavorites()
{
    std::string sWhy;
    StopPresetThreads();
    if (!SaveFavorites(FolderPath(PATH_FAVORITES), &sWhy))
        AddNotice(sWhy);
    return 1;
}

// Without a cache the next start reads all presets again: nothing that a user has to be told.
u32 ClosePresets()
{
    ShutdownPresetLibrary();
    return 1;
}

// A thread that is stuck in a module needs its library for as long as the process lives.
u32 UnloadLibraries()
{
    if (AnyThreadIsStuck())
        return 1;
    UnloadModules();
    FreeShaderList();
    CloseMixAccelerator();
    CloseGLDisplay();
    return 1;
}

u32 CloseSharedBlock()
{
    CloseSharedStatus();
    return 1;
}

// clang-format off
constexpr Step asShutDown[] = {
    {"preset", DestroyPreset},
    {"sound monitor", StopSound},
    {"sound block", FreeSoundFrame},
    {"favorites", WriteFavorites},
    {"preset library", ClosePresets},
    {"modules", UnloadLibraries},
    {"shared block", CloseSharedBlock},
};

constexpr Step asShutDownHeadless[] = {
    {"preset", DestroyPreset},
    {"sound block", FreeSoundFrame},
    {"modules", UnloadLibraries},
};
// clang-format on

// The step that fails is named on standard error.
bool RunStartSteps(std::span<const Step> steps, const StartOptions &options)
{
    pOptions = &options;
    const char *pszFailed = RunSteps(steps);
    pOptions = nullptr;
    if (pszFailed)
        std::fprintf(stderr, "%s: the start failed at this step: %s\n", program_invocation_short_name, pszFailed);
    return !pszFailed;
}

} // namespace

int StartCore(const StartOptions &options)
{
    ASSERT_MAIN_THREAD();
    return RunStartSteps(asStartCore, options) ? 0 : EXIT_MAPPING;
}

void StartPreset(std::u16string_view path)
{
    SetStartBufferSize();
    PresetReport report = {};
    std::string sTrouble;
    OpenFirstPreset(path, &report, &sTrouble);
    ReportPassedOver(report);
    if (!sTrouble.empty())
        std::fprintf(stderr, "%s: %s. The default preset takes its place\n", program_invocation_short_name,
                     sTrouble.c_str());
    ResetFrameStatsWithPresets();
}

void RunPendingSteps()
{
    ASSERT_MAIN_THREAD();
    if (bAcceleratorsPending)
        SetupMixAccelerator();
    FinishOpenGLTest();
    if (bOpenGLTestPutOff && !bOpenGLAvailable && AnyModuleNeedsOpenGL())
        ReopenPresets();
    bAcceleratorsPending = bOpenGLTestPutOff = false;
}

void SaveSettings()
{
    std::string sWhy;
    if (!WriteGlobals(&GlobalSettings, &sWhy))
        AddNotice(sWhy);
}

void ShutDown()
{
    ASSERT_MAIN_THREAD();
    RunSteps(asShutDown);
}

std::string DescribeSound(const StartOptions &options)
{
    InitFolders({{}, options.data, options.modules});
    std::string s;
    DescribeSoundSource(&s);
    return s;
}

int StartHeadless(const StartOptions &options)
{
    ASSERT_MAIN_THREAD();
    if (RunStartSteps(asStartHeadless, options))
        return 0;
    ShutDownHeadless();
    return EXIT_HEADLESS;
}

void ShutDownHeadless()
{
    ASSERT_MAIN_THREAD();
    RunSteps(asShutDownHeadless);
}

u32 NextTimerId()
{
    u32 dwId = 0;
    do
        dwId = static_cast<u32>(++dwTimerIdNext);
    while (dwId == 0);
    return dwId;
}
