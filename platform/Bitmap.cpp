// Bitmap.cpp -- bitmaps and drawing contexts, the records behind the handles of the module boundary
#include "platform/Bitmap.h"

#include "platform/Clock.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr i32 BITMAP_SIDE_MAX = 32767;
constexpr size_t BITS_ALIGNMENT = 64;

HostBitmap *SelectBitmap(HostContext *hdc, HostBitmap *hbm)
{
    HostBitmap *hbmBefore = hdc->pSelected;
    hdc->pSelected = hbm;
    return hbmBefore;
}

} // namespace

HostBitmap *CreateBitmap(i32 nWidth, i32 nHeight)
{
    if (nWidth < 1 || nHeight < 1 || nWidth > BITMAP_SIDE_MAX || nHeight > BITMAP_SIDE_MAX)
        return nullptr;
    auto *hbm = static_cast<HostBitmap *>(std::calloc(1, sizeof(HostBitmap)));
    if (!hbm)
        return nullptr;
    *hbm = {sizeof(HostBitmap), nWidth, nHeight, 32, static_cast<u64>(nWidth) * 4, nullptr};
    if (posix_memalign(&hbm->pBits, BITS_ALIGNMENT, BitmapBytes(hbm)) != 0) {
        std::free(hbm);
        return nullptr;
    }
    ClearBitmap(hbm);
    return hbm;
}

void DeleteBitmap(HostBitmap *hbm)
{
    if (!hbm)
        return;
    std::free(hbm->pBits);
    std::free(hbm);
}

void ClearBitmap(HostBitmap *hbm)
{
    std::memset(hbm->pBits, 0, BitmapBytes(hbm));
}

void CopyBitmap(HostBitmap *hbmTo, const HostBitmap *hbmFrom)
{
    std::memcpy(hbmTo->pBits, hbmFrom->pBits, BitmapBytes(hbmFrom));
}

HostContext *CreateContext()
{
    auto *hdc = static_cast<HostContext *>(std::calloc(1, sizeof(HostContext)));
    if (hdc)
        *hdc = {sizeof(HostContext), ClockIsFixed() ? 1u : 0u, nullptr, SelectBitmap, TickCount(), 0};
    return hdc;
}

void DeleteContext(HostContext *hdc)
{
    std::free(hdc);
}
