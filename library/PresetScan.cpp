// PresetScan.cpp -- from files to entries: one file, one pass over the folder, the scan thread
#include "library/PresetScan.h"

#include "library/PresetSummary.h"
#include "library/PresetTable.h"
#include "library/SummaryPool.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/Text.h"
#include "platform/Threads.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <vector>

namespace {

constexpr std::string_view PRESET_SUFFIX = ".vd";

std::u16string sFolder;
std::thread ScanThread;
std::atomic<u32> bScansStopped{0};
std::atomic<u32> nPathsTooLong{0};
std::atomic<u32> nNamesUnusable{0};

// A file that the table lacks, to be read before it is entered.
struct NewFile {
    u32 iFile; // in the listing
    std::u16string path;
    FileFacts facts;
    u32 bSummarized; // summary is valid
    PresetSummary summary;
};

struct ScanPass {
    u32 bDetails;
    u32 bInPlaceOfNotices; // removals count, and so does every fact
    u32 bShowProgress;
    FolderListing listing; // with facts unless the files are going to be read
    OpenedFolder folder;
    std::vector<NewFile> newFiles; // guarded by PresetTableLock while threads add to it
    std::vector<bool> abSeen;      // by slot; the same
    std::atomic<u32> bChanged;
    std::atomic<u32> nTooLong;
    u32 nFilesDone; // guarded by PresetTableLock
};

FoundPreset MakeFoundPreset(std::u16string_view path, const FileFacts &facts, const PresetSummary *pSummary)
{
    FoundPreset made = {};
    CopyText(made.info.szPath, path);
    FillPresetInfo(&made.info, facts, pSummary);
    made.qwFileId = facts.qwFileId;
    made.bFavorKnown = pSummary && pSummary->bFavorKnown;
    return made;
}

void MarkSeen(ScanPass *pPass, i32 iSlot)
{
    if (iSlot >= 0 && static_cast<size_t>(iSlot) < pPass->abSeen.size())
        pPass->abSeen[static_cast<size_t>(iSlot)] = true;
}

// What the table knew of a file when it was asked.
struct KnownFile {
    i32 iSlot; // -1: nothing
    u32 bSummarized;
    FileFacts facts;
};

KnownFile FindKnown(ScanPass *pPass, std::u16string_view path)
{
    const PresetTableLock lock;
    const i32 iSlot = FindPresetFile(path);
    const PresetInfo *lppi = GetPresetInfo(iSlot);
    MarkSeen(pPass, iSlot);
    return lppi ? KnownFile{iSlot, lppi->bSummarized, {lppi->ftLastWrite, lppi->dwSize, PresetFileId(iSlot)}}
                : KnownFile{iSlot, 0, {}};
}

void UpdateFile(ScanPass *pPass, std::u16string_view path, FileFacts facts, ReadBuffer *pBuffer)
{
    PresetSummary summary = {};
    if (pPass->bDetails && !SummarizePreset(pPass->folder, path, pBuffer, &facts, &summary))
        return;
    const FoundPreset fresh = MakeFoundPreset(path, facts, pPass->bDetails ? &summary : nullptr);
    if (UpdatePreset(fresh.info, fresh.qwFileId, fresh.bFavorKnown))
        pPass->bChanged = 1;
}

void PlaceFile(ScanPass *pPass, std::u16string_view path, const FileFacts &facts, const PresetSummary *pSummary)
{
    const FoundPreset made = MakeFoundPreset(path, facts, pSummary);
    if (PlacePreset(made.info, made.qwFileId, made.bFavorKnown))
        pPass->bChanged = 1;
}

// pListed: the facts from the listing, or null to ask for them where they are needed.
void LookAtFile(ScanPass *pPass, u32 iFile, const std::u16string &path, const FileFacts *pListed, ReadBuffer *pBuffer)
{
    const KnownFile known = FindKnown(pPass, path);
    FileFacts facts = known.facts;
    if (known.iSlot >= 0 && pPass->bDetails && !known.bSummarized) {
        if (!pPass->bInPlaceOfNotices || QueryFile(path, &facts) == FileKind::Regular)
            UpdateFile(pPass, path, facts, pBuffer);
        return;
    }
    facts = {};
    if (pListed)
        facts = *pListed;
    else if (QueryFile(path, &facts) != FileKind::Regular)
        return;
    if (static_cast<u32>(facts.cb) == ALL_ONES)
        return; // the size that stands for a failure
    const bool bMoved = pPass->bInPlaceOfNotices ? facts != known.facts : facts.ftLastWrite != known.facts.ftLastWrite;
    if (known.iSlot < 0 && !pPass->bDetails) {
        PlaceFile(pPass, path, facts, nullptr);
    } else if (known.iSlot < 0) {
        const PresetTableLock lock;
        pPass->newFiles.push_back({iFile, path, facts, 0, {}});
    } else if (bMoved) {
        UpdateFile(pPass, path, facts, pBuffer);
    }
}

// The end of the pass alone shows 1. Counted and shown in one step, so that it never goes back.
void ShowScanProgress(ScanPass *pPass)
{
    if (!pPass->bShowProgress)
        return;
    const PresetTableLock lock;
    const f32 fFilesBefore = static_cast<f32>(pPass->nFilesDone++);
    StorePresetScanState(0, fFilesBefore / static_cast<f32>(pPass->listing.files.size()));
}

bool LookAtListed(ScanPass *pPass, u32 iFile, ReadBuffer *pBuffer)
{
    const FolderFile &file = pPass->listing.files[iFile];
    const std::u16string path = JoinPath(sFolder, FromUtf8(pPass->listing.Name(file)));
    if (path.size() < NAME_CHARS)
        LookAtFile(pPass, iFile, path, pPass->bDetails ? nullptr : &file.facts, pBuffer);
    else
        pPass->nTooLong++;
    ShowScanProgress(pPass);
    return !bScansStopped;
}

// On the pool if files are going to be read. 0 when it was stopped.
u32 LookAtFolder(ScanPass *pPass)
{
    const u32 nFiles = static_cast<u32>(pPass->listing.files.size());
    u32 bAll = 1;
    ReadBuffer buffer = {};
    if (pPass->bDetails)
        bAll = RunSummaryJobs(nFiles, [=](u32 i, ReadBuffer *pBuffer) { return LookAtListed(pPass, i, pBuffer); });
    else
        for (u32 i = 0; i < nFiles; i++)
            LookAtListed(pPass, i, &buffer);
    nPathsTooLong = pPass->nTooLong.load();
    nNamesUnusable = pPass->listing.nLeftOut;
    return bAll;
}

using SlotOfPath = std::pair<i32, std::u16string>;

// Entries that the listing lacks. One whose file is there has an unusual name and is looked at like the others.
std::vector<SlotOfPath> FindGoneEntries(ScanPass *pPass)
{
    std::vector<SlotOfPath> unseen;
    ForEachPreset([&](i32 iSlot, const PresetInfo *lppi) {
        if (static_cast<size_t>(iSlot) < pPass->abSeen.size() && !pPass->abSeen[static_cast<size_t>(iSlot)])
            unseen.emplace_back(iSlot, lppi->szPath);
    });
    std::vector<SlotOfPath> gone;
    ReadBuffer buffer = {};
    for (const auto &[iSlot, path] : unseen) {
        if (QueryFile(path, nullptr) == FileKind::Regular)
            LookAtFile(pPass, ALL_ONES, path, nullptr, &buffer);
        else
            gone.emplace_back(iSlot, path);
    }
    return gone;
}

// Another thread may have dropped or recycled it meanwhile.
bool StillHolds(i32 iSlot, const std::u16string &path)
{
    const PresetInfo *lppi = GetLivePreset(iSlot);
    return lppi && path == lppi->szPath;
}

bool IsSameFile(i32 iSlot, const FileFacts &facts)
{
    const PresetInfo *lppi = GetLivePreset(iSlot);
    return lppi && lppi->ftLastWrite == facts.ftLastWrite && lppi->dwSize == static_cast<u32>(facts.cb) &&
           PresetFileId(iSlot) == facts.qwFileId;
}

// A file that went while the same one came under another name was renamed: its entry goes along.
void SettleGoneEntries(ScanPass *pPass)
{
    const std::vector<SlotOfPath> gone = FindGoneEntries(pPass);
    std::unordered_map<u64, size_t> newById;
    for (size_t i = 0; i < pPass->newFiles.size(); i++)
        newById.emplace(pPass->newFiles[i].facts.qwFileId, i);
    const PresetTableLock lock;
    for (const auto &[iSlot, path] : gone) {
        if (!StillHolds(iSlot, path))
            continue;
        const auto it = newById.find(PresetFileId(iSlot));
        pPass->bChanged = 1;
        const NewFile *pNew = it != newById.end() ? &pPass->newFiles[it->second] : nullptr;
        if (pNew && IsSameFile(iSlot, pNew->facts) && FindPresetFile(pNew->path) < 0)
            MovePreset(iSlot, pNew->path);
        else
            DropPreset(iSlot);
    }
    std::erase_if(pPass->newFiles, [](const NewFile &file) { return FindPresetFile(file.path) >= 0; });
}

u32 SummarizeNewFiles(ScanPass *pPass)
{
    return RunSummaryJobs(static_cast<u32>(pPass->newFiles.size()), [=](u32 i, ReadBuffer *pBuffer) {
        NewFile &file = pPass->newFiles[i];
        file.bSummarized = SummarizePreset(pPass->folder, file.path, pBuffer, &file.facts, &file.summary);
        return !bScansStopped;
    });
}

// In the order of their names, whichever thread found them first.
void PlaceNewFiles(ScanPass *pPass)
{
    std::sort(pPass->newFiles.begin(), pPass->newFiles.end(),
              [](const NewFile &a, const NewFile &b) { return a.iFile < b.iFile; });
    for (const NewFile &file : pPass->newFiles)
        if (file.bSummarized)
            PlaceFile(pPass, file.path, file.facts, &file.summary);
}

u32 RunPass(ScanPass *pPass)
{
    ListFolder(sFolder, PRESET_SUFFIX, !pPass->bDetails, &pPass->listing);
    ReservePresetSlots(static_cast<u32>(pPass->listing.files.size()) + PRESET_SLOTS_SPARE);
    if (pPass->listing.files.empty() && !pPass->bInPlaceOfNotices)
        return 0;
    if (pPass->bShowProgress)
        StorePresetScanState(0, 0);
    pPass->abSeen.resize(static_cast<size_t>(PresetSlotCount()));
    pPass->folder = OpenFolder(sFolder);
    u32 bAll = LookAtFolder(pPass);
    if (pPass->bInPlaceOfNotices && bAll)
        SettleGoneEntries(pPass);
    if (pPass->bDetails && bAll)
        bAll = SummarizeNewFiles(pPass);
    CloseFolder(&pPass->folder);
    PlaceNewFiles(pPass);
    if (pPass->bShowProgress && bAll)
        StorePresetScanState(1, 0);
    return pPass->bChanged;
}

void PresetScanThread()
{
    SetThisThread(ThreadPriority::BelowNormal, "vd-scan");
    if (ScanPresetFolder(1))
        NotifyPresetChange();
}

} // namespace

void SetPresetFolder(std::u16string_view folder)
{
    ASSERT_MAIN_THREAD();
    sFolder = FromUtf8(NativePath(WithoutTrailingSeparators(folder)));
}

const std::u16string &PresetFolder()
{
    return sFolder;
}

bool IsPresetName(std::u16string_view name)
{
    return ContainsNoCase(name, u".vd");
}

u32 NewPresetInfo(std::u16string_view path, u32 bDetails, FoundPreset *pNew)
{
    FileFacts facts = {};
    PresetSummary summary = {};
    ReadBuffer buffer = {};
    if (path.size() >= NAME_CHARS || QueryFile(path, &facts) != FileKind::Regular ||
        static_cast<u32>(facts.cb) == ALL_ONES)
        return 0;
    if (bDetails && !SummarizePreset({{}, -1}, path, &buffer, &facts, &summary))
        return 0;
    *pNew = MakeFoundPreset(path, facts, bDetails ? &summary : nullptr);
    return 1;
}

u32 RefreshPresetInfo(const PresetInfo *lppi, u32 bDetails)
{
    NameText szPath;
    if (!lppi)
        return 0;
    {
        const PresetTableLock lock;
        CopyText(szPath, lppi->szPath);
    }
    FoundPreset fresh;
    return NewPresetInfo(szPath, bDetails, &fresh) && UpdatePreset(fresh.info, fresh.qwFileId, fresh.bFavorKnown);
}

u32 AddPresetInfo(std::u16string_view path, u32 bDetails)
{
    FoundPreset made;
    return IsPresetName(NameAndExtension(path)) && NewPresetInfo(path, bDetails, &made) &&
           PlacePreset(made.info, made.qwFileId, made.bFavorKnown);
}

u32 ScanPresetFolder(u32 bDetails)
{
    ScanPass pass = {};
    pass.bDetails = pass.bShowProgress = bDetails;
    return RunPass(&pass);
}

u32 RescanPresetFolder()
{
    ScanPass pass = {};
    pass.bDetails = pass.bInPlaceOfNotices = 1;
    return RunPass(&pass);
}

void SummarizeFromCache()
{
    ASSERT_MAIN_THREAD();
    ForEachPreset([](i32 iSlot, PresetInfo *lppi) {
        PresetSummary summary;
        const FileFacts facts = {lppi->ftLastWrite, lppi->dwSize, PresetFileId(iSlot)};
        if (!lppi->bSummarized && FindCachedSummary(lppi->szPath, facts, &summary))
            FillPresetInfo(lppi, facts, &summary);
    });
}

std::string DescribePresetsLeftOut()
{
    std::string s;
    if (nPathsTooLong)
        s = std::to_string(nPathsTooLong) + " presets are left out: their paths are longer than " +
            std::to_string(NAME_CHARS - 1) + " characters";
    if (nNamesUnusable)
        s += (s.empty() ? "" : "; ") + std::to_string(nNamesUnusable) +
             " presets are left out: their names are not UTF-8 or hold a backslash";
    return s;
}

// Where no thread can be had the presets are listed without summaries.
void StartPresetScanThread()
{
    ASSERT_MAIN_THREAD();
    try {
        ScanThread = std::thread(PresetScanThread);
    } catch (const std::system_error &) {
        AddNotice("presets cannot be summarised: the system has no thread to give");
    }
}

void StopPresetScans()
{
    bScansStopped = 1;
    if (ScanThread.joinable())
        ScanThread.join();
}

void AllowPresetScans()
{
    bScansStopped = 0;
}
