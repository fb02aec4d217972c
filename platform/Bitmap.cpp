// Bitmap.cpp -- bitmaps and drawing contexts, the records behind the handles of the module boundary
#include "platform/Bitmap.h"

#include "platform/Clock.h"
#include "platform/Sanitizers.h"

#include <sys/mman.h>

#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <mutex>
#include <vector>

namespace {

constexpr i32 BITMAP_SIDE_MAX = 32767;
constexpr size_t BITS_ALIGNMENT = 64;
constexpr size_t LARGE_PAGE = 2 * 1024 * 1024;

// Tools that watch every block must see every one come and go.
#if defined(VD_ADDRESS_SANITIZER) || defined(VD_THREAD_SANITIZER)
constexpr bool BLOCKS_ARE_WATCHED = true;
#else
constexpr bool BLOCKS_ARE_WATCHED = false;
#endif

// Large pictures lie in large pages: walking through several at a time misses in the address caches at every row
// otherwise.
void *AllocateBits(size_t cb)
{
    const bool bLarge = cb >= 2 * LARGE_PAGE && !BLOCKS_ARE_WATCHED;
    void *pBits = nullptr;
    if (posix_memalign(&pBits, bLarge ? LARGE_PAGE : BITS_ALIGNMENT, cb) != 0)
        return nullptr;
    if (bLarge)
        madvise(pBits, cb / LARGE_PAGE * LARGE_PAGE, MADV_HUGEPAGE); // a kernel without them goes on with small ones
    return pBits;
}

// Memory of deleted bitmaps for those to come: fresh memory of this size costs thousands of page faults, which a preset
// that takes the place of another would pay in the middle of a show.
constexpr u64 KEPT_BYTES_MIN = 1u << 20;
constexpr size_t KEPT_MAX = 16;
constexpr u64 KEPT_BYTES_MAX = 256u << 20;

struct KeptMemory {
    std::mutex mtx;
    u64 cbEach = 0; // all of one size, that of the latest
    std::vector<void *> blocks;

    void Resize(u64 cb)
    {
        if (cb == cbEach)
            return;
        for (void *pv : blocks)
            std::free(pv);
        blocks.clear();
        cbEach = cb;
    }
    ~KeptMemory()
    {
        Resize(0);
    }
} Kept;

// Null when there is no memory; the contents are undefined.
void *TakeMemory(u64 cb)
{
    if (cb >= KEPT_BYTES_MIN) {
        const std::lock_guard lock(Kept.mtx);
        Kept.Resize(cb);
        if (!Kept.blocks.empty()) {
            void *pv = Kept.blocks.back();
            Kept.blocks.pop_back();
            return pv;
        }
    }
    return AllocateBits(cb);
}

// The size stands in a record that modules can reach: the block itself must confirm it.
void GiveMemory(void *pv, u64 cb)
{
    const std::lock_guard lock(Kept.mtx);
    const bool bKeep = cb >= KEPT_BYTES_MIN && malloc_usable_size(pv) >= cb && !BLOCKS_ARE_WATCHED;
    if (bKeep)
        Kept.Resize(cb);
    if (bKeep && Kept.blocks.size() < KEPT_MAX && (Kept.blocks.size() + 1) * cb <= KEPT_BYTES_MAX)
        Kept.blocks.push_back(pv);
    else
        std::free(pv);
}

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
    hbm->pBits = TakeMemory(BitmapBytes(hbm));
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
    GiveMemory(hbm->pBits, BitmapBytes(hbm));
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
