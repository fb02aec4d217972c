// PixelRows.h -- rows of bitmaps as the bytes that picture files hold
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

#include <cstdio>

// Row y of a bitmap, in memory order: row 0 is the bottom of the picture.
inline const u8 *BitmapRow(const HostBitmap *hbm, i32 y)
{
    return static_cast<const u8 *>(hbm->pBits) + static_cast<u64>(y) * hbm->cbRow;
}

// Red, green, blue of each pixel, 3 x nPixels bytes. [any-thread]
void RowToRgb(u8 *pRgb, const u8 *pBgra, i32 nPixels);
// Blue, green, red.
void RowToBgr(u8 *pBgr, const u8 *pBgra, i32 nPixels);

// How many rows of cbRow bytes make a block that is worth a call of the system; at least 1, at most nRows.
i32 RowsInBlock(u64 cbRow, i32 nRows);
// Writes all rows in memory order, each turned by pfnRow and filled up to cbRow bytes with zeros, many to a call of the
// system. False when the file takes no more. [any-thread]
bool WriteRowBlocks(const HostBitmap *hbm, FILE *pFile, size_t cbRow,
                    void (*pfnRow)(u8 *pTo, const u8 *pBgra, i32 nPixels));
