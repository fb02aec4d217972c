// Bitmap.h -- bitmaps and drawing contexts, the records behind the handles of the module boundary
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

// Makes a zero-filled bitmap; null when out of memory or for a size outside 1 to 32767. The pixel memory is exactly
// width x height x 4 bytes, so that a tool that guards allocations sees a module that writes beyond it. [main-thread]
HostBitmap *CreateBitmap(i32 nWidth, i32 nHeight);
void DeleteBitmap(HostBitmap *hbm); // null is fine
void ClearBitmap(HostBitmap *hbm);
// Copies the pixels of a bitmap of the same size.
void CopyBitmap(HostBitmap *hbmTo, const HostBitmap *hbmFrom);

inline u64 BitmapBytes(const HostBitmap *hbm)
{
    return hbm->cbRow * static_cast<u64>(hbm->nHeight);
}

inline u32 *BitmapPixels(const HostBitmap *hbm)
{
    return static_cast<u32 *>(hbm->pBits);
}

// Makes a context with nothing selected; null when out of memory.
HostContext *CreateContext();
void DeleteContext(HostContext *hdc);
