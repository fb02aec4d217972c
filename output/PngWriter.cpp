// PngWriter.cpp -- PNG files: 8-bit RGB, made for speed
#include "output/PictureWriters.h"

#include "platform/Bitmap.h"

#include <png.h>
#include <zlib.h>

#include <csetjmp>

namespace {

constexpr int COMPRESSION_LEVEL = 1;
constexpr size_t OUTPUT_BUFFER = 256 * 1024;

void Silent(png_structp, png_const_charp)
{
}

[[noreturn]] void Abandon(png_structp pPng, png_const_charp)
{
    png_longjmp(pPng, 1);
}

// On noisy frames the differences to the row above compress best for their time, and runs are all that is worth
// looking for in them: an order of magnitude faster than the library's defaults.
void SetUpEncoder(png_structp pPng, png_infop pInfo, const HostBitmap *hbm)
{
    png_set_IHDR(pPng, pInfo, static_cast<png_uint_32>(hbm->nWidth), static_cast<png_uint_32>(hbm->nHeight), 8,
                 PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_filter(pPng, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
    png_set_compression_level(pPng, COMPRESSION_LEVEL);
    png_set_compression_strategy(pPng, Z_RLE);
    png_set_compression_buffer_size(pPng, OUTPUT_BUFFER);
    png_write_info(pPng, pInfo);
    png_set_bgr(pPng);
    png_set_filler(pPng, 0, PNG_FILLER_AFTER); // drops the byte that is no transparency
}

// Errors of the library come back here by longjmp: nothing in this function may need a destructor.
bool Encode(png_structp pPng, png_infop pInfo, const HostBitmap *hbm, FILE *pFile)
{
    if (setjmp(png_jmpbuf(pPng)))
        return false;
    png_init_io(pPng, pFile);
    SetUpEncoder(pPng, pInfo, hbm);
    for (i32 y = hbm->nHeight - 1; y >= 0; y--)
        png_write_row(pPng, static_cast<png_const_bytep>(hbm->pBits) + static_cast<u64>(y) * hbm->cbRow);
    png_write_end(pPng, pInfo);
    return true;
}

} // namespace

bool WritePng(const HostBitmap *hbm, FILE *pFile, u32)
{
    png_structp pPng = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Abandon, Silent);
    png_infop pInfo = pPng ? png_create_info_struct(pPng) : nullptr;
    const bool bWritten = pInfo && Encode(pPng, pInfo, hbm, pFile);
    png_destroy_write_struct(&pPng, &pInfo);
    return bWritten;
}
