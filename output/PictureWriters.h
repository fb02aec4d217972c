// PictureWriters.h -- the writers behind SavePicture, one per file format
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

#include <cstdio>

// Writes the whole picture, opaque, to an open file. nQuality is 0 to 100. False when anything failed; the caller
// closes the file and deals with what was written. [any-thread]
using PictureWriterFn = bool (*)(const HostBitmap *hbm, FILE *pFile, u32 nQuality);

bool WritePng(const HostBitmap *hbm, FILE *pFile, u32 nQuality);
// Rows in memory order: the picture's bottom row comes first.
bool WritePpm(const HostBitmap *hbm, FILE *pFile, u32 nQuality);
