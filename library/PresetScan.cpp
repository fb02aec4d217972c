// PresetScan.cpp -- from files to entries: one file, one pass over the folder, the scan thread
#include "library/PresetScan.h"

#include "library/PresetSummary.h"
#include "library/PresetTable.h"
#include "library/SummaryPool.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "platform/Threads.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <unordered_map>
#include <vector>

namespace {

constexpr std::string_view PRESET_SUFFIX = ".vd";

std::u16string sFolder;
std::thread ScanThread;
std::atomic<u32> bScansStopped{0};
std::atomic<u32> nPathsTooLong{0};

// A file that a pass has to look into.
struct ScanJob {
    std::u16string path;
    FileFacts facts;
    u32 bNew;        // not in the table yet
    u32 bSummarized; // summary is valid
    PresetSummary summary;
};

struct ScanPass {
    u32 bDetails;
    u32 bInPlaceOfNotices; // removals count, and so does every fact
    u32 bShowProgress;
    FolderListing listing;
    std::vector<ScanJob> jobs;
    std::vector<bool> abSeen; // by slot
    std::atomic<u32> bChanged;
    std::atomic<u32> nJobsDone;
};

NewPreset MakeNewPreset(std::u16string_view path, const FileFacts &facts, const PresetSummary *pSummary)
{
    NewPreset made = {};
    CopyText(made.info.szPath, path);
    FillPresetInfo(&made.info, facts, pSummary);
    made.qwFileId = facts.qwFileId;
    made.bFavorKnown = pSummary && pSummary->bFavorKnown;
    return made;
}

bool FactsMoved(const ScanPass &pass, i32 iSlot, const PresetInfo *lppi, const FileFacts &facts)
{
    if (lppi->ftLastWrite != facts.ftLastWrite)
        return true;
    return pass.bInPlaceOfNotices &&
           (lppi->dwSize != static_cast<u32>(facts.cb) || PresetFileId(iSlot) != facts.qwFileId);
}

void MarkSeen(ScanPass *pPass, i32 iSlot)
{
    if (static_cast<size_t>(iSlot) < pPass->abSeen.size())
        pPass->abSeen[static_cast<size_t>(iSlot)] = true;
}

void CompareFile(ScanPass *pPass, std::u16string_view path, const FileFacts &facts)
{
    const PresetTableLock lock;
    const i32 iSlot = FindPresetFile(path);
    if (iSlot < 0) {
        pPass->jobs.push_back({std::u16string(path), facts, 1, 0, {}});
        return;
    }
    MarkSeen(pPass, iSlot);
    const PresetInfo *lppi = GetPresetInfo(iSlot);
    if ((pPass->bDetails && !lppi->bSummarized) || FactsMoved(*pPass, iSlot, lppi, facts))
        pPass->jobs.push_back({std::u16string(path), facts, 0, 0, {}});
}

void CompareFolder(ScanPass *pPass)
{
    u32 nTooLong = 0;
    std::u16string path = JoinPath(sFolder, u"x");
    const size_t cchFolder = path.size() - 1;
    for (const FolderFile &file : pPass->listing.files) {
        path.resize(cchFolder);
        path += FromUtf8(pPass->listing.Name(file));
        if (path.size() < NAME_CHARS)
            CompareFile(pPass, path, file.facts);
        else
            nTooLong++;
    }
    nPathsTooLong = nTooLong;
}

// Entries that the listing lacks. One whose file is there has an unusual name and is looked at like the others.
std::vector<i32> FindGoneEntries(ScanPass *pPass)
{
    std::vector<std::pair<i32, std::u16string>> unseen;
    ForEachPreset([&](i32 iSlot, const PresetInfo *lppi) {
        if (static_cast<size_t>(iSlot) < pPass->abSeen.size() && !pPass->abSeen[static_cast<size_t>(iSlot)])
            unseen.emplace_back(iSlot, lppi->szPath);
    });
    std::vector<i32> gone;
    for (const auto &[iSlot, path] : unseen) {
        FileFacts facts;
        if (QueryFile(path, &facts) == FileKind::Regular)
            CompareFile(pPass, path, facts);
        else
            gone.push_back(iSlot);
    }
    return gone;
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
    const std::vector<i32> gone = FindGoneEntries(pPass);
    std::unordered_map<u64, size_t> newById;
    for (size_t i = 0; i < pPass->jobs.size(); i++)
        if (pPass->jobs[i].bNew)
            newById.emplace(pPass->jobs[i].facts.qwFileId, i);
    const PresetTableLock lock;
    for (i32 iSlot : gone) {
        const auto it = newById.find(PresetFileId(iSlot));
        pPass->bChanged = 1;
        if (it == newById.end() || !IsSameFile(iSlot, pPass->jobs[it->second].facts)) {
            DropPreset(iSlot);
            continue;
        }
        MovePreset(iSlot, pPass->jobs[it->second].path);
        pPass->jobs[it->second].bNew = 0; // with its summary, if it has none yet
        newById.erase(it);
    }
}

void PlaceJob(ScanPass *pPass, const ScanJob &job)
{
    const NewPreset made = MakeNewPreset(job.path, job.facts, job.bSummarized ? &job.summary : nullptr);
    const bool bDone = job.bNew ? PlacePreset(made.info, made.qwFileId, made.bFavorKnown) != nullptr
                                : UpdatePreset(made.info, made.qwFileId, made.bFavorKnown) != 0;
    if (bDone)
        pPass->bChanged = 1;
}

void ShowScanProgress(const ScanPass &pass)
{
    const f32 fFiles = static_cast<f32>(std::max<size_t>(pass.listing.files.size(), 1));
    const f32 fLeft = static_cast<f32>(pass.jobs.size() - pass.nJobsDone);
    if (pass.bShowProgress)
        StorePresetScanState(0, std::clamp(1.0f - fLeft / fFiles, 0.0f, 1.0f));
}

bool RunDetailJob(ScanPass *pPass, u32 iJob, ReadBuffer *pBuffer)
{
    ScanJob &job = pPass->jobs[iJob];
    job.bSummarized = SummarizePreset(job.path, pBuffer, &job.facts, &job.summary);
    if (job.bSummarized && !job.bNew)
        PlaceJob(pPass, job);
    pPass->nJobsDone++;
    ShowScanProgress(*pPass);
    return !bScansStopped;
}

// New files are entered in the order of their names, whichever thread read them.
u32 RunDetailJobs(ScanPass *pPass)
{
    const u32 bAll = RunSummaryJobs(static_cast<u32>(pPass->jobs.size()), [pPass](u32 iJob, ReadBuffer *pBuffer) {
        return RunDetailJob(pPass, iJob, pBuffer);
    });
    for (const ScanJob &job : pPass->jobs)
        if (job.bNew && job.bSummarized)
            PlaceJob(pPass, job);
    return bAll;
}

u32 RunPass(ScanPass *pPass)
{
    ListFolder(sFolder, PRESET_SUFFIX, &pPass->listing);
    ReservePresetSlots(static_cast<u32>(pPass->listing.files.size()) + PRESET_SLOTS_SPARE);
    if (pPass->listing.files.empty() && !pPass->bInPlaceOfNotices)
        return 0;
    if (pPass->bShowProgress)
        StorePresetScanState(0, 0);
    pPass->abSeen.resize(static_cast<size_t>(PresetSlotCount()));
    CompareFolder(pPass);
    if (pPass->bInPlaceOfNotices)
        SettleGoneEntries(pPass);
    if (!pPass->bDetails)
        for (const ScanJob &job : pPass->jobs)
            PlaceJob(pPass, job);
    if (pPass->bDetails && RunDetailJobs(pPass) && pPass->bShowProgress)
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

u32 NewPresetInfo(std::u16string_view path, u32 bDetails, NewPreset *pNew)
{
    FileFacts facts = {};
    PresetSummary summary = {};
    ReadBuffer buffer = {};
    if (path.size() >= NAME_CHARS || QueryFile(path, &facts) != FileKind::Regular ||
        static_cast<u32>(facts.cb) == ALL_ONES)
        return 0;
    if (bDetails && !SummarizePreset(path, &buffer, &facts, &summary))
        return 0;
    *pNew = MakeNewPreset(path, facts, bDetails ? &summary : nullptr);
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
    NewPreset fresh;
    return NewPresetInfo(szPath, bDetails, &fresh) && UpdatePreset(fresh.info, fresh.qwFileId, fresh.bFavorKnown);
}

u32 AddPresetInfo(std::u16string_view path, u32 bDetails)
{
    NewPreset made;
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
    ForEachPreset([](i32 iSlot, PresetInfo *lppi) {
        PresetSummary summary;
        const FileFacts facts = {lppi->ftLastWrite, lppi->dwSize, PresetFileId(iSlot)};
        if (!lppi->bSummarized && FindCachedSummary(lppi->szPath, facts, &summary))
            FillPresetInfo(lppi, facts, &summary);
    });
}

u32 PathsTooLong()
{
    return nPathsTooLong;
}

void StartPresetScanThread()
{
    ScanThread = std::thread(PresetScanThread);
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
