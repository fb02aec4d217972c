// PresetTable.cpp -- the process-wide table of presets: slots, lookups, its lock and its notices
#include "library/PresetTable.h"

#include "platform/Assert.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr i32 NO_SLOT = -1;
constexpr u32 SLOTS_PER_CHUNK = PRESET_SLOTS_GROWTH;
constexpr u32 FIRST_BUCKETS = 1024;

// Slots stand in chunks that never move. The index is a hash of the folded name; slots with the same bucket are
// chained.
struct SlotChunk {
    PresetInfo *apEntry[SLOTS_PER_CHUNK]; // null: empty
    u32 adwHash[SLOTS_PER_CHUNK];
    i32 aiNext[SLOTS_PER_CHUNK]; // next live slot of the bucket, or NO_SLOT
    u64 aqwFileId[SLOTS_PER_CHUNK];
    u64 aqwTaken[SLOTS_PER_CHUNK / 64]; // one bit a slot: it holds a live entry
};

struct PresetTableRecord {
    std::recursive_mutex mtx; // guards everything below but the scan state
    i32 nSlots;
    i32 iFirstFree; // no slot before it is free
    u32 nLive;
    std::vector<SlotChunk *> apChunk;
    std::vector<i32> aiBucket;          // first slot of each bucket; a power of two of them
    std::vector<PresetNotice> asNotice; // in the order in which the windows came
    std::atomic<u64> qwScanState;       // bScanDone, and above it the bits of fScanProgress
};

PresetTableRecord PresetTable;

SlotChunk *ChunkOf(i32 iSlot)
{
    return PresetTable.apChunk[static_cast<u32>(iSlot) / SLOTS_PER_CHUNK];
}

u32 InChunk(i32 iSlot)
{
    return static_cast<u32>(iSlot) % SLOTS_PER_CHUNK;
}

bool InTable(i32 iSlot)
{
    return iSlot >= 0 && iSlot < PresetTable.nSlots;
}

PresetInfo *&EntryAt(i32 iSlot)
{
    return ChunkOf(iSlot)->apEntry[InChunk(iSlot)];
}

std::u16string_view PathOf(const PresetInfo *lppi)
{
    return {lppi->szPath, TextLength(lppi->szPath, NAME_CHARS)};
}

// Only of the name: the folder is the same for all.
u32 HashName(std::u16string_view path)
{
    u32 dwHash = 2166136261u;
    for (char16_t ch : NameAndExtension(path))
        dwHash = (dwHash ^ FoldCase(ch)) * 16777619u;
    return dwHash ^ dwHash >> 15;
}

i32 &BucketOf(u32 dwHash)
{
    return PresetTable.aiBucket[dwHash & (PresetTable.aiBucket.size() - 1)];
}

void LinkSlot(i32 iSlot)
{
    SlotChunk *pChunk = ChunkOf(iSlot);
    i32 &iFirst = BucketOf(pChunk->adwHash[InChunk(iSlot)]);
    pChunk->aiNext[InChunk(iSlot)] = iFirst;
    iFirst = iSlot;
}

void UnlinkSlot(i32 iSlot)
{
    i32 *pi = &BucketOf(ChunkOf(iSlot)->adwHash[InChunk(iSlot)]);
    while (*pi != iSlot)
        pi = &ChunkOf(*pi)->aiNext[InChunk(*pi)];
    *pi = ChunkOf(iSlot)->aiNext[InChunk(iSlot)];
}

void GrowIndex()
{
    PresetTable.aiBucket.assign(std::max<size_t>(FIRST_BUCKETS, PresetTable.aiBucket.size() * 2), NO_SLOT);
    for (i32 i = 0; i < PresetTable.nSlots; i++)
        if (GetLivePreset(i))
            LinkSlot(i);
}

// Into the index, as a live entry.
void EnterSlot(i32 iSlot, u32 dwHash)
{
    SlotChunk *pChunk = ChunkOf(iSlot);
    pChunk->adwHash[InChunk(iSlot)] = dwHash;
    pChunk->aqwTaken[InChunk(iSlot) / 64] |= 1ull << InChunk(iSlot) % 64;
    LinkSlot(iSlot);
    PresetTable.nLive++;
}

u32 AddSlots(u32 nSlots)
{
    const u32 nWanted = static_cast<u32>(PresetTable.nSlots) + nSlots;
    while (PresetTable.apChunk.size() * SLOTS_PER_CHUNK < nWanted) {
        auto *pChunk = static_cast<SlotChunk *>(std::calloc(1, sizeof(SlotChunk)));
        if (!pChunk)
            return 0;
        PresetTable.apChunk.push_back(pChunk);
    }
    PresetTable.nSlots = static_cast<i32>(nWanted);
    return 1;
}

// A slot for a new entry, with its record.
i32 TakeSlot()
{
    i32 iSlot = FindFreeSlot();
    if (iSlot < 0 && AddSlots(PRESET_SLOTS_GROWTH))
        iSlot = FindFreeSlot();
    if (iSlot < 0)
        return NO_SLOT;
    if (!EntryAt(iSlot))
        EntryAt(iSlot) = static_cast<PresetInfo *>(std::calloc(1, sizeof(PresetInfo)));
    return EntryAt(iSlot) ? iSlot : NO_SLOT;
}

void CopySummary(PresetInfo *lppi, const PresetInfo &info)
{
    lppi->bSoundSync = info.bSoundSync;
    std::memcpy(lppi->bModuleUsed, info.bModuleUsed, sizeof lppi->bModuleUsed);
    lppi->bCompatible = info.bCompatible;
}

// What a record without a summary does not know stays with the entry, and so does the browser's mark. A stored favor
// count stays behind once the entry has one of this run.
void CopyInto(PresetInfo *lppi, const PresetInfo &info, u32 bFavorKnown)
{
    const bool bKnown = lppi->bSummarized && PathOf(lppi) == PathOf(&info);
    if (bFavorKnown && !bKnown)
        lppi->nFavor = info.nFavor;
    if (info.bSummarized)
        CopySummary(lppi, info);
    lppi->bSummarized = info.bSummarized || bKnown;
    CopyText(lppi->szPath, PathOf(&info));
    lppi->ftLastWrite = info.ftLastWrite;
    lppi->dwSize = info.dwSize;
    lppi->bDeleted = 0;
    MarkPresetChanged(lppi);
}

// The first slot of the live entries for which pfn holds, among those with the folded name of the path.
template <typename Fn> i32 FindByName(std::u16string_view path, Fn &&pfn)
{
    const PresetTableLock lock;
    if (PresetTable.aiBucket.empty() || path.empty())
        return NO_SLOT;
    const u32 dwHash = HashName(path);
    i32 iFound = NO_SLOT;
    for (i32 i = BucketOf(dwHash); i != NO_SLOT; i = ChunkOf(i)->aiNext[InChunk(i)])
        if (ChunkOf(i)->adwHash[InChunk(i)] == dwHash && (iFound < 0 || i < iFound) && pfn(PathOf(EntryAt(i))))
            iFound = i;
    return iFound;
}

} // namespace

PresetTableLock::PresetTableLock() : lock(PresetTable.mtx)
{
}

i32 PresetSlotCount()
{
    const PresetTableLock lock;
    return PresetTable.nSlots;
}

PresetInfo *GetPresetInfo(i32 iSlot)
{
    const PresetTableLock lock;
    return InTable(iSlot) ? EntryAt(iSlot) : nullptr;
}

PresetInfo *GetLivePreset(i32 iSlot)
{
    const PresetTableLock lock;
    PresetInfo *lppi = InTable(iSlot) ? EntryAt(iSlot) : nullptr;
    return lppi && !lppi->bDeleted ? lppi : nullptr;
}

i32 FindPresetFile(std::u16string_view path)
{
    return FindByName(path, [&](std::u16string_view entry) { return entry == path; });
}

i32 FindPresetInfo(std::u16string_view path)
{
    const PresetTableLock lock;
    const i32 iExact = FindPresetFile(path);
    return iExact >= 0 ? iExact : FindByName(path, [&](std::u16string_view entry) { return EqualNoCase(entry, path); });
}

i32 FindFreeSlot()
{
    const PresetTableLock lock;
    for (i32 i = PresetTable.iFirstFree; i < PresetTable.nSlots; i = i / 64 * 64 + 64) {
        const u64 qwFree = ~ChunkOf(i)->aqwTaken[InChunk(i) / 64] >> i % 64;
        if (qwFree == 0)
            continue;
        PresetTable.iFirstFree = i + std::countr_zero(qwFree);
        return PresetTable.iFirstFree < PresetTable.nSlots ? PresetTable.iFirstFree : NO_SLOT;
    }
    PresetTable.iFirstFree = PresetTable.nSlots;
    return NO_SLOT;
}

u32 ReservePresetSlots(u32 nSlots)
{
    const PresetTableLock lock;
    return PresetTable.nSlots > 0 || AddSlots(nSlots);
}

PresetInfo *PlacePreset(const PresetInfo &info, u64 qwFileId, u32 bFavorKnown)
{
    const PresetTableLock lock;
    if (PresetTable.nLive >= PresetTable.aiBucket.size())
        GrowIndex();
    i32 iSlot = FindPresetFile(PathOf(&info));
    const bool bLive = iSlot >= 0;
    if (!bLive)
        iSlot = TakeSlot();
    if (iSlot < 0)
        return nullptr;
    CopyInto(EntryAt(iSlot), info, bFavorKnown);
    ChunkOf(iSlot)->aqwFileId[InChunk(iSlot)] = qwFileId;
    if (!bLive)
        EnterSlot(iSlot, HashName(PathOf(&info)));
    return EntryAt(iSlot);
}

u32 UpdatePreset(const PresetInfo &info, u64 qwFileId, u32 bFavorKnown)
{
    const PresetTableLock lock;
    return FindPresetFile(PathOf(&info)) >= 0 && PlacePreset(info, qwFileId, bFavorKnown);
}

void MovePreset(i32 iSlot, std::u16string_view path)
{
    const PresetTableLock lock;
    PresetInfo *lppi = GetLivePreset(iSlot);
    VD_ASSERT(lppi);
    UnlinkSlot(iSlot);
    CopyText(lppi->szPath, path);
    MarkPresetChanged(lppi);
    ChunkOf(iSlot)->adwHash[InChunk(iSlot)] = HashName(PathOf(lppi));
    LinkSlot(iSlot);
}

void DropPreset(i32 iSlot)
{
    const PresetTableLock lock;
    PresetInfo *lppi = GetLivePreset(iSlot);
    VD_ASSERT(lppi);
    UnlinkSlot(iSlot);
    ChunkOf(iSlot)->aqwTaken[InChunk(iSlot) / 64] &= ~(1ull << InChunk(iSlot) % 64);
    PresetTable.iFirstFree = std::min(PresetTable.iFirstFree, iSlot);
    PresetTable.nLive--;
    lppi->bDeleted = 1;
    MarkPresetChanged(lppi);
}

void MarkPresetChanged(PresetInfo *lppi)
{
    lppi->bChanged = 1;
}

u64 PresetFileId(i32 iSlot)
{
    const PresetTableLock lock;
    return InTable(iSlot) ? ChunkOf(iSlot)->aqwFileId[InChunk(iSlot)] : 0;
}

void StorePresetScanState(u32 bScanDone, f32 fScanProgress)
{
    PresetTable.qwScanState = static_cast<u64>(std::bit_cast<u32>(fScanProgress)) << 32 | bScanDone;
}

u32 PresetScanDone()
{
    return static_cast<u32>(PresetTable.qwScanState);
}

f32 PresetScanProgress()
{
    return std::bit_cast<f32>(static_cast<u32>(PresetTable.qwScanState >> 32));
}

void AddPresetNotice(const PresetNotice &notice)
{
    const PresetTableLock lock;
    RemovePresetNotice(notice.hNotifyWnd);
    PresetTable.asNotice.push_back(notice);
}

void RemovePresetNotice(const void *hNotifyWnd)
{
    const PresetTableLock lock;
    std::erase_if(PresetTable.asNotice, [=](const PresetNotice &notice) { return notice.hNotifyWnd == hNotifyWnd; });
}

void NotifyPresetChange()
{
    const PresetTableLock lock;
    for (const PresetNotice &notice : PresetTable.asNotice)
        if (notice.hNotifyWnd && notice.uNotifyMsg)
            notice.pfnPost(notice.hNotifyWnd, notice.uNotifyMsg);
}

void FreePresetTable()
{
    const PresetTableLock lock;
    for (i32 i = 0; i < PresetTable.nSlots; i++)
        std::free(EntryAt(i));
    for (SlotChunk *pChunk : PresetTable.apChunk)
        std::free(pChunk);
    PresetTable.apChunk = {};
    PresetTable.aiBucket = {};
    PresetTable.nSlots = PresetTable.iFirstFree = 0;
    PresetTable.nLive = 0;
    PresetTable.asNotice = {};
    StorePresetScanState(0, 0);
}
