// Bitmap.cpp -- bitmaps and drawing contexts, the records behind the handles of the module boundary
#include "platform/Bitmap.h"

#include "platform/Clock.h"
#include "platform/Sanitizers.h"

#include <sys/mman.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr i32 BITMAP_SIDE_MAX = 32767;
constexpr size_t BITS_ALIGNMENT = 64;
constexpr size_t LARGE_PAGE = 2 * 1024 * 1024;

HostBitmap *SelectBitmap(HostContext *hdc, HostBitmap *hbm)
{
    HostBitmap *hbmBefore = hdc->pSelected;
    hdc->pSelected = hbm;
    return hbmBefore;
}

// Large pictures lie in large pages: walking through several at a time misses in the address caches at every row
// otherwise. Tools that guard allocations keep their own layout.
void *AllocateBits(size_t cb)
{
#if defined(VD_ADDRESS_SANITIZER) || defined(VD_THREAD_SANITIZER)
    const bool bLarge = false;
#else
    const bool bLarge = cb >= 2 * LARGE_PAGE;
#endif
    void *pBits = nullptr;
    if (posix_memalign(&pBits, bLarge ? LARGE_PAGE : BITS_ALIGNMENT, cb) != 0)
        return nullptr;
    if (bLarge)
        madvise(pBits, cb / LARGE_PAGE * LARGE_PAGE, MADV_HUGEPAGE); // a kernel without them goes on with small ones
    return pBits;
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
    hbm->pBits = AllocateBits(BitmapBytes(hbm));
    if (!hbm->pBits) {
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
