// PictureWriters.h -- the writers behind SavePicture, one per file format
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

#include <cstdio>

// Writes the whole picture, opaque, to an open file that can be positioned. nQuality is 0 to 100. False when anything
// failed, with errno telling why if it is known; the caller closes the file and deals with what was written. Says
// nothing, and no library's error leaves it by another way. [any-thread]
using PictureWriterFn = bool (*)(const HostBitmap *hbm, FILE *pFile, u32 nQuality);

bool WriteJpeg(const HostBitmap *hbm, FILE *pFile, u32 nQuality);
bool WritePng(const HostBitmap *hbm, FILE *pFile, u32 nQuality);
// At most 256 colours: those of the picture itself if they are so few, else chosen for it and dithered.
bool WriteGif(const HostBitmap *hbm, FILE *pFile, u32 nQuality);
bool WriteTiff(const HostBitmap *hbm, FILE *pFile, u32 nQuality);
bool WriteBmp(const HostBitmap *hbm, FILE *pFile, u32 nQuality);
// Rows in memory order: the picture's bottom row comes first.
bool WritePpm(const HostBitmap *hbm, FILE *pFile, u32 nQuality);

inline bool WriteBytes(FILE *pFile, const void *p, size_t cb)
{
    return std::fwrite(p, 1, cb, pFile) == cb;
}
