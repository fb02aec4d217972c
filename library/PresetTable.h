// PresetTable.h -- the process-wide table of presets: slots, lookups, its lock and its notices
//
// One lock covers growth, walks, entries and recycling. Every function here takes it for itself; whoever walks the
// slots or reads an entry holds a PresetTableLock around it, and never reads a file meanwhile.
#pragma once

#include "library/PresetInfo.h"
#include "platform/FileFacts.h"

#include <mutex>
#include <string_view>

// Holds the table. May be nested.
class PresetTableLock {
  public:
    PresetTableLock();

  private:
    std::unique_lock<std::recursive_mutex> lock;
};

constexpr u32 PRESET_SLOTS_SPARE = 20; // beyond the files found at start
constexpr u32 PRESET_SLOTS_GROWTH = 8192;

// Number of slots, those that are empty included. Walk them from 0: growth during a walk only adds to the end.
i32 PresetSlotCount();
// The entry of a slot; null for an empty slot and outside the table.
PresetInfo *GetPresetInfo(i32 iSlot);
// The entry of a slot if its file is there, else null.
PresetInfo *GetLivePreset(i32 iSlot);
// The slot of the live entry with the path: the one with this spelling, else the first without regard to case. -1:
// none.
i32 FindPresetInfo(std::u16string_view path);
// The slot of the live entry with exactly this path, or -1. On file systems that tell names by case these are other
// files than those that differ by case alone.
i32 FindPresetFile(std::u16string_view path);
// The first slot that is empty or whose file is gone; -1: none.
i32 FindFreeSlot();

// For a walk that stays with the live entries: pfn(iSlot, lppi) for each, under the lock.
template <typename Fn> void ForEachPreset(Fn &&pfn)
{
    const PresetTableLock lock;
    for (i32 i = 0, n = PresetSlotCount(); i < n; i++)
        if (PresetInfo *lppi = GetLivePreset(i))
            pfn(i, lppi);
}

// Makes slots, before the first entry. 0 when out of memory.
u32 ReservePresetSlots(u32 nSlots);
// Enters a filled record under its path: into the live entry that has the path already, else into the first free slot,
// which may mean growth. A recycled entry keeps its favor count, unless bFavorKnown, and what the record does not know.
// Null, and no change, when out of memory. qwFileId as in FileFacts.
PresetInfo *PlacePreset(const PresetInfo &info, u64 qwFileId, u32 bFavorKnown);
// The same for an entry that is still live under this path; 0, and no change, if there is none.
u32 UpdatePreset(const PresetInfo &info, u64 qwFileId, u32 bFavorKnown);
// Gives a live entry another path.
void MovePreset(i32 iSlot, std::u16string_view path);
// The file is gone.
void DropPreset(i32 iSlot);
// Says that the entry is no longer as the browser last listed it. Only the browser asks for that and takes it back: it
// stands in the entry because any thread may change one. Under the lock.
void MarkPresetChanged(PresetInfo *lppi);
u64 PresetFileId(i32 iSlot);

// The detail pass: whether one has finished, and the fraction of the running one. Both are one store.
void StorePresetScanState(u32 bScanDone, f32 fScanProgress);
u32 PresetScanDone();
f32 PresetScanProgress();

// Where notices of changes go: to each of these windows its message. The list belongs to the table's lock, not to a
// thread: all three functions take it, and pfnPost is called on any thread under it. It must only post, wait for
// nobody, and ask the table for nothing. When RemovePresetNotice returns, it is called no more: a window removes itself
// before it goes. [any-thread]
struct PresetNotice {
    void *hNotifyWnd; // window told of changes; null: none, nothing is posted
    u32 uNotifyMsg;   // private message posted to that window; 0: none, nothing is posted
    void (*pfnPost)(void *hNotifyWnd, u32 uNotifyMsg);
};
// A window that is there already gets the message in place of the one it had.
void AddPresetNotice(const PresetNotice &notice);
void RemovePresetNotice(const void *hNotifyWnd);
void NotifyPresetChange();

// Frees everything, the list of windows too. After the last thread that uses the table has ended.
void FreePresetTable();
