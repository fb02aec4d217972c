// Stretch.cpp -- nearest-pixel stretch of a whole picture
#include "output/mixer/Stretch.h"

#include "output/mixer/ForRanges.h"
#include "output/mixer/StretchKernels.h"
#include "platform/Bitmap.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr size_t CACHED_BYTES_MAX = 20 * 1024 * 1024; // a larger target is not found in a cache later
constexpr size_t BYTES_PER_TASK = 512 * 1024;
constexpr size_t CHUNK = 2048; // pixels of a row that are made at a time before they go past the caches

// Columns for one pair of widths, kept for the next picture, which mostly has the same.
struct ColumnCache {
    i32 nFrom;
    i32 nTo;
    size_t nGroup; // 0: no groups, the source is walked pixel by pixel
    std::vector<u32> iSource;
    std::vector<u32> iLane;
};

void FillColumns(ColumnCache *pCache, i32 nFrom, i32 nTo, size_t nGroup)
{
    if (pCache->nFrom == nFrom && pCache->nTo == nTo && pCache->nGroup == nGroup)
        return;
    pCache->nFrom = nFrom;
    pCache->nTo = nTo;
    pCache->nGroup = nGroup;
    const size_t n = static_cast<size_t>(nTo);
    pCache->iSource.resize(n);
    pCache->iLane.resize(n);
    for (size_t x = 0; x < n; x++)
        pCache->iSource[x] = static_cast<u32>(x * static_cast<size_t>(nFrom) / n);
    const StretchColumns columns = {pCache->iSource.data(), nullptr, static_cast<size_t>(nFrom)};
    for (size_t x = 0; x < n && nGroup > 0; x++)
        pCache->iLane[x] = pCache->iSource[x] - static_cast<u32>(StretchWindow(columns, x - x % nGroup, nGroup));
}

struct StretchJob {
    const StretchTarget &target;
    const HostBitmap *hbm;
    const StretchKernels &kernels;
    StretchColumns columns;
    bool bFlip;
    bool bSameWidth;
    bool bGroups;
    bool bStream; // past the caches
};

u32 *TargetRow(const StretchJob &job, size_t y)
{
    return reinterpret_cast<u32 *>(static_cast<u8 *>(job.target.pBits) + y * job.target.cbRow);
}

size_t SourceRow(const StretchJob &job, size_t y)
{
    return y * static_cast<size_t>(job.hbm->nHeight) / static_cast<size_t>(job.target.nHeight);
}

const u32 *SourcePixels(const StretchJob &job, size_t ySource)
{
    const size_t y = job.bFlip ? static_cast<size_t>(job.hbm->nHeight) - 1 - ySource : ySource;
    return reinterpret_cast<const u32 *>(static_cast<const u8 *>(job.hbm->pBits) + y * job.hbm->cbRow);
}

void StretchPixels(const StretchJob &job, u32 *pTo, const u32 *pFrom, size_t iFirst, size_t nPixels)
{
    if (job.bGroups) {
        job.kernels.pfnWiden(pTo, pFrom, job.columns, iFirst, nPixels);
        return;
    }
    for (size_t i = 0; i < nPixels; i++)
        pTo[i] = pFrom[job.columns.piSource[iFirst + i]];
}

// Rows y to yEnd all show the same source row.
void StreamRows(const StretchJob &job, const u32 *pFrom, size_t y, size_t yEnd)
{
    alignas(64) u32 adw[CHUNK];
    const size_t nWidth = static_cast<size_t>(job.target.nWidth);
    for (size_t i = 0; i < nWidth; i += CHUNK) {
        const size_t nPixels = std::min(CHUNK, nWidth - i);
        const u32 *pPixels = job.bSameWidth ? pFrom + i : adw;
        if (!job.bSameWidth)
            StretchPixels(job, adw, pFrom, i, nPixels);
        for (size_t yTo = y; yTo < yEnd; yTo++)
            job.kernels.pfnStream(TargetRow(job, yTo) + i, pPixels, nPixels);
    }
}

void StoreRows(const StretchJob &job, const u32 *pFrom, size_t y, size_t yEnd)
{
    const size_t nWidth = static_cast<size_t>(job.target.nWidth);
    if (job.bSameWidth)
        std::memcpy(TargetRow(job, y), pFrom, nWidth * sizeof(u32));
    else
        StretchPixels(job, TargetRow(job, y), pFrom, 0, nWidth);
    for (size_t yTo = y + 1; yTo < yEnd; yTo++)
        std::memcpy(TargetRow(job, yTo), TargetRow(job, y), nWidth * sizeof(u32));
}

// Whichever way round the target stands, the source is read upwards, which memory foresees best: rows are counted
// here as they come in the source.
void StretchRows(const StretchJob &job, size_t iFirst, size_t iLimit)
{
    const size_t nHeight = static_cast<size_t>(job.target.nHeight);
    const auto rowOf = [&](size_t i) { return job.bFlip ? nHeight - 1 - i : i; };
    for (size_t i = iFirst; i < iLimit;) {
        const size_t ySource = SourceRow(job, rowOf(i));
        size_t iEnd = i + 1;
        while (iEnd < iLimit && SourceRow(job, rowOf(iEnd)) == ySource)
            iEnd++;
        const size_t y = std::min(rowOf(i), rowOf(iEnd - 1));
        (job.bStream ? StreamRows : StoreRows)(job, SourcePixels(job, ySource), y, y + iEnd - i);
        i = iEnd;
    }
    if (job.bStream)
        job.kernels.pfnFence();
}

} // namespace

void StretchPicture(const StretchTarget &target, const HostBitmap *hbm, bool bFlip)
{
    thread_local ColumnCache cache = {};
    if (target.nWidth < 1 || target.nHeight < 1)
        return;
    const StretchKernels &kernels = GetStretchKernels();
    const bool bSameWidth = target.nWidth == hbm->nWidth;
    const bool bGroups = target.nWidth > hbm->nWidth && static_cast<size_t>(hbm->nWidth) >= kernels.nGroup;
    if (!bSameWidth)
        FillColumns(&cache, hbm->nWidth, target.nWidth, bGroups ? kernels.nGroup : 0);
    const StretchColumns columns = {cache.iSource.data(), cache.iLane.data(), static_cast<size_t>(hbm->nWidth)};
    const size_t nHeight = static_cast<size_t>(target.nHeight);
    const size_t cbRow = static_cast<size_t>(target.nWidth) * sizeof(u32);
    const StretchJob job = {target, hbm,        kernels, columns,
                            bFlip,  bSameWidth, bGroups, nHeight * cbRow > CACHED_BYTES_MAX};
    ForRanges(nHeight, std::max<size_t>(BYTES_PER_TASK / cbRow, 1),
              [&](size_t iFirst, size_t iEnd) { StretchRows(job, iFirst, iEnd); });
}
