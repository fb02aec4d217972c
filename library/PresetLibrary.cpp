// PresetLibrary.cpp -- what the program knows of the preset folder: start and end
#include "library/PresetLibrary.h"

#include "library/Favorites.h"
#include "library/FolderWatch.h"
#include "library/PresetCache.h"
#include "library/PresetScan.h"
#include "library/PresetSummary.h"
#include "library/PresetTable.h"
#include "library/PresetWatch.h"
#include "platform/MainThread.h"

void OpenPresetLibrary(std::u16string_view folder, std::u16string_view favorites)
{
    ASSERT_MAIN_THREAD();
    SetPresetFolder(folder);
    AllowPresetScans();
    PrepareSummaries();
    const u32 bCached = LoadPresetCache(PresetFolder());
    ScanPresetFolder(0);
    if (bCached)
        SummarizeFromCache();
    else
        LoadFavorites(favorites);
}

u32 WatchPresets()
{
    ASSERT_MAIN_THREAD();
    ForgetPresetNames();
    return WatchFolder(PresetFolder(), PresetFolderCallback, PresetFolderLost) != WATCH_ID_FAILED;
}

void ScanPresets()
{
    ASSERT_MAIN_THREAD();
    StartPresetScanThread();
}

void StopPresetThreads()
{
    StopPresetScans();
    StopAllWatches();
}

u32 ShutdownPresetLibrary(std::string *psWhy)
{
    StopPresetThreads();
    const u32 bSaved = SavePresetCache(PresetFolder(), psWhy);
    FreePresetLibrary();
    return bSaved;
}

void FreePresetLibrary()
{
    StopPresetThreads();
    FreePresetCache();
    FreePresetTable();
}
