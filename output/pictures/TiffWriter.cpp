// TiffWriter.cpp -- TIFF files: 8-bit RGB, compressed without loss
#include "output/pictures/PictureWriters.h"
#include "output/pictures/PixelRows.h"

#include <tiffio.h>

#include <algorithm>
#include <vector>

namespace {

constexpr int COMPRESSION_LEVEL = 1;

FILE *FileOf(thandle_t pv)
{
    return static_cast<FILE *>(pv);
}

tmsize_t ReadNothing(thandle_t, void *, tmsize_t)
{
    return 0;
}

tmsize_t Write(thandle_t pv, void *p, tmsize_t cb)
{
    return static_cast<tmsize_t>(std::fwrite(p, 1, static_cast<size_t>(cb), FileOf(pv)));
}

toff_t Seek(thandle_t pv, toff_t nOffset, int nFrom)
{
    if (fseeko(FileOf(pv), static_cast<off_t>(nOffset), nFrom) != 0)
        return static_cast<toff_t>(-1);
    return static_cast<toff_t>(ftello(FileOf(pv)));
}

int LeaveOpen(thandle_t)
{
    return 0;
}

toff_t Size(thandle_t pv)
{
    const off_t nHere = ftello(FileOf(pv));
    const toff_t cb = Seek(pv, 0, SEEK_END);
    Seek(pv, static_cast<toff_t>(nHere), SEEK_SET);
    return cb;
}

// The library would print on standard error.
int KeepSilent(TIFF *, void *, const char *, const char *, va_list)
{
    return 1;
}

TIFF *OpenOn(FILE *pFile)
{
    TIFFOpenOptions *pOptions = TIFFOpenOptionsAlloc();
    if (!pOptions)
        return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(pOptions, KeepSilent, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(pOptions, KeepSilent, nullptr);
    TIFF *pTiff =
        TIFFClientOpenExt("picture", "w", pFile, ReadNothing, Write, Seek, LeaveOpen, Size, nullptr, nullptr, pOptions);
    TIFFOpenOptionsFree(pOptions);
    return pTiff;
}

bool Describe(TIFF *pTiff, const HostBitmap *hbm, i32 nRows)
{
    return TIFFSetField(pTiff, TIFFTAG_IMAGEWIDTH, static_cast<u32>(hbm->nWidth)) &&
           TIFFSetField(pTiff, TIFFTAG_IMAGELENGTH, static_cast<u32>(hbm->nHeight)) &&
           TIFFSetField(pTiff, TIFFTAG_BITSPERSAMPLE, 8) && TIFFSetField(pTiff, TIFFTAG_SAMPLESPERPIXEL, 3) &&
           TIFFSetField(pTiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
           TIFFSetField(pTiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           TIFFSetField(pTiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
           TIFFSetField(pTiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
           TIFFSetField(pTiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
           TIFFSetField(pTiff, TIFFTAG_ZIPQUALITY, COMPRESSION_LEVEL) &&
           TIFFSetField(pTiff, TIFFTAG_ROWSPERSTRIP, static_cast<u32>(nRows));
}

bool WriteStrips(TIFF *pTiff, const HostBitmap *hbm, i32 nRows)
{
    const size_t cbRow = static_cast<size_t>(hbm->nWidth) * 3;
    std::vector<u8> block(cbRow * static_cast<size_t>(nRows));
    u32 iStrip = 0;
    for (i32 y = hbm->nHeight; y > 0;) {
        const i32 yEnd = std::max(y - nRows, 0);
        u8 *pTo = block.data();
        for (; y > yEnd; pTo += cbRow)
            RowToRgb(pTo, BitmapRow(hbm, --y), hbm->nWidth);
        if (TIFFWriteEncodedStrip(pTiff, iStrip++, block.data(), pTo - block.data()) < 0)
            return false;
    }
    return true;
}

} // namespace

bool WriteTiff(const HostBitmap *hbm, FILE *pFile, u32)
{
    TIFF *pTiff = OpenOn(pFile);
    if (!pTiff)
        return false;
    const i32 nRows = RowsInBlock(static_cast<u64>(hbm->nWidth) * 3, hbm->nHeight);
    const bool bWritten = Describe(pTiff, hbm, nRows) && WriteStrips(pTiff, hbm, nRows) && TIFFFlush(pTiff);
    TIFFClose(pTiff);
    return bWritten && !std::ferror(pFile);
}
