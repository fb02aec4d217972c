// PictureFiles.h -- writes bitmaps to picture files
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

enum class PictureFormat { Refused, Jpeg, Png, Gif, Tiff, Ppm, Bmp };

// The format of a path: the first of a list of texts that stands anywhere in the whole path decides.
PictureFormat PictureFormatOf(const char16_t *pszPath);

// There is a writer for the format.
bool CanWritePicture(PictureFormat eFormat);

// Writes the bitmap, opaque, in the format that the path names. nQuality is 0 to 100 and counts for JPEG only.
// Returns 0 for a null bitmap, an empty path, a refused format or a failed write; a half-written encoded file is
// removed; errno tells why, 0 when it is not known. Overwrites without asking. [any-thread]
u32 SavePicture(const HostBitmap *hbm, const char16_t *pszPath, u32 nQuality);
