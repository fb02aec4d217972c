// SoundMonitor.cpp -- the binding of the sound monitor library
#include "modules/SoundMonitor.h"

#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/SharedLibrary.h"
#include "platform/Text.h"
#include "state/Folders.h"

#include <chrono>
#include <cstdlib>
#include <thread>

Listeners<void(const char16_t *pszTitle, const char16_t *pszText)> ErrorListeners;

namespace {

constexpr const char16_t *MISSING_TITLE = u"Critical file not found!";
constexpr u32 DESCRIPTION_BYTES = 512;

// Since when the dynamic level has been too low.
struct QuietTimer {
    u32 bRunning;
    u64 qwSince;
};
QuietTimer Quiet;

void ShowMissingFile(const char16_t *pszPath)
{
    if (ErrorListeners.IsEmpty())
        AddNotice(ToUtf8(MISSING_TITLE) + " " + ToUtf8(pszPath));
    else
        ErrorListeners.Tell(MISSING_TITLE, pszPath);
}

void ReportNoSound(const char16_t *pszPath, const std::string &sCause)
{
    AddNotice("no sound: " + ToUtf8(pszPath) + ": " + sCause);
}

// The name of the first entry point that is missing and must not be; null: none.
const char *FindEntryPoints(SoundMonitorBinding *pBinding)
{
    SharedLibrary *pLibrary = pBinding->hMonitorLib;
    pBinding->pfnStart = FindEntryPointAs<AMStartVolumeMonitorFn>(pLibrary, u"AMStartVolumeMonitor");
    pBinding->pfnStop = FindEntryPointAs<AMStopVolumeMonitorFn>(pLibrary, u"AMStopVolumeMonitor");
    pBinding->pfnGetLevel = FindEntryPointAs<AMGetVolumeLevelFn>(pLibrary, u"AMGetVolumeLevel");
    pBinding->pfnIsQuiet = FindEntryPointAs<AMIsQuietFn>(pLibrary, u"AMIsQuiet");
    pBinding->pfnSetHomingSamples = FindEntryPointAs<AMSetHomingSamplesFn>(pLibrary, u"AMSetHomingSamples");
    pBinding->pfnSetSimScale = FindEntryPointAs<AMSetSimSoundTickScaleFn>(pLibrary, u"AMSetSimSoundTickScale");
    return !pBinding->pfnStart              ? "AMStartVolumeMonitor"
           : !pBinding->pfnStop             ? "AMStopVolumeMonitor"
           : !pBinding->pfnGetLevel         ? "AMGetVolumeLevel"
           : !pBinding->pfnIsQuiet          ? "AMIsQuiet"
           : !pBinding->pfnSetHomingSamples ? "AMSetHomingSamples"
                                            : nullptr;
}

// Empty on success, else the cause; the library stays loaded either way.
std::string StartMonitor(SoundMonitorBinding *pBinding)
{
    if (const char *pszMissing = FindEntryPoints(pBinding))
        return std::string("it lacks the export ") + pszMissing;
    pBinding->hMonitor = pBinding->pfnStart(MONITOR_ARGUMENT);
    return pBinding->hMonitor ? std::string() : "its monitor cannot start";
}

u32 DescribeFrom(SharedLibrary *pLibrary, void *hMonitor, std::string *psText)
{
    const auto pfnDescribe = FindEntryPointAs<AMDescribeSourceFn>(pLibrary, u"AMDescribeSource");
    if (!pfnDescribe) {
        *psText = "the sound monitor library does not tell what it listens to";
        return 0;
    }
    char szText[DESCRIPTION_BYTES] = {};
    const u32 bFound = pfnDescribe(hMonitor, szText, sizeof szText - 1);
    *psText = szText; // the last byte was kept out of the library's reach
    return bFound;
}

} // namespace

void BindSoundMonitor(SoundMonitorBinding *pBinding)
{
    ASSERT_MAIN_THREAD();
    if (pBinding->dwMonitorMark == SOUND_MONITOR_MARK)
        return;
    *pBinding = {};
    const char16_t *pszPath = FolderPath(PATH_SOUND_LIBRARY);
    if (!FileExists(pszPath)) {
        ShowMissingFile(pszPath);
        return;
    }
    std::string sCause;
    pBinding->hMonitorLib = LoadSharedLibrary(pszPath, &sCause);
    if (pBinding->hMonitorLib)
        sCause = StartMonitor(pBinding);
    if (sCause.empty()) {
        pBinding->dwMonitorMark = SOUND_MONITOR_MARK;
        return;
    }
    ReportNoSound(pszPath, sCause);
    UnloadSharedLibrary(pBinding->hMonitorLib);
    *pBinding = {};
}

void UnbindSoundMonitor(SoundMonitorBinding *pBinding)
{
    ASSERT_MAIN_THREAD();
    if (pBinding->dwMonitorMark != SOUND_MONITOR_MARK)
        return;
    pBinding->pfnStop(pBinding->hMonitor);
    std::this_thread::sleep_for(std::chrono::milliseconds(MONITOR_STOP_MS));
    std::free(pBinding->hMonitor);
    UnloadSharedLibrary(pBinding->hMonitorLib);
    *pBinding = {};
}

u32 SoundIsQuiet()
{
    ASSERT_MAIN_THREAD();
    const SoundMonitorBinding &monitor = GlobalSettings.Monitor;
    f32 fLevel = 0;
    if (!monitor.pfnGetLevel || !monitor.pfnGetLevel(monitor.hMonitor, VOLUMETYPE_DYNAMIC, &fLevel))
        return 1;
    if (fLevel >= SILENT_LEVEL) {
        Quiet.bRunning = 0;
        return 0;
    }
    if (!Quiet.bRunning)
        Quiet = {1, TickCount()};
    return TickCount() - Quiet.qwSince > SILENT_AFTER_MS;
}

void SetMonitorTimeScale(u32 nScale)
{
    ASSERT_MAIN_THREAD();
    const SoundMonitorBinding &monitor = GlobalSettings.Monitor;
    if (monitor.pfnSetSimScale && nScale >= 1 && nScale <= MONITOR_TIME_SCALE_MAX)
        monitor.pfnSetSimScale(monitor.hMonitor, nScale);
}

u32 DescribeSoundSource(std::string *psText)
{
    ASSERT_MAIN_THREAD();
    const SoundMonitorBinding &monitor = GlobalSettings.Monitor;
    if (monitor.hMonitorLib)
        return DescribeFrom(monitor.hMonitorLib, monitor.hMonitor, psText);
    const char16_t *pszPath = FolderPath(PATH_SOUND_LIBRARY);
    if (!FileExists(pszPath)) {
        *psText = ToUtf8(MISSING_TITLE) + " " + ToUtf8(pszPath);
        return 0;
    }
    std::string sCause;
    SharedLibrary *pLibrary = LoadSharedLibrary(pszPath, &sCause);
    if (!pLibrary) {
        *psText = sCause;
        return 0;
    }
    const u32 bFound = DescribeFrom(pLibrary, nullptr, psText);
    UnloadSharedLibrary(pLibrary);
    return bFound;
}
