// PngWriter.cpp -- PNG files: 8-bit RGB, made for speed
#include "output/pictures/PictureWriters.h"
#include "output/pictures/PixelRows.h"

#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr u32 COMPRESSION_LEVEL = 1;
constexpr u8 FILTER_SUB = 1; // differences to the pixel on the left: the smallest files of all filters on most frames
constexpr size_t CHUNK_BYTES = 256 * 1024;
constexpr size_t BEFORE_DATA = 8; // length and type
constexpr size_t AFTER_DATA = 4;  // check sum

struct PngStream {
    FILE *pFile;
    isal_zstream z;
    u8 abLevel[ISAL_DEF_LVL1_DEFAULT];
    u8 abChunk[BEFORE_DATA + CHUNK_BYTES + AFTER_DATA];
};

// High byte first.
void PutNumber(u8 *pTo, u32 n)
{
    for (u32 i = 0; i < 4; i++)
        pTo[i] = static_cast<u8>(n >> (24 - 8 * i));
}

// pChunk has room for what stands around the cbData bytes at pChunk + BEFORE_DATA.
bool WriteChunk(FILE *pFile, const char (&szType)[5], u8 *pChunk, size_t cbData)
{
    PutNumber(pChunk, static_cast<u32>(cbData));
    std::memcpy(pChunk + 4, szType, 4);
    PutNumber(pChunk + BEFORE_DATA + cbData, crc32_gzip_refl(0, pChunk + 4, cbData + 4));
    return WriteBytes(pFile, pChunk, BEFORE_DATA + cbData + AFTER_DATA);
}

bool WriteHeader(FILE *pFile, const HostBitmap *hbm)
{
    constexpr u8 abSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    constexpr size_t cbHeader = 13;
    u8 abChunk[BEFORE_DATA + cbHeader + AFTER_DATA] = {};
    PutNumber(abChunk + BEFORE_DATA, static_cast<u32>(hbm->nWidth));
    PutNumber(abChunk + BEFORE_DATA + 4, static_cast<u32>(hbm->nHeight));
    abChunk[BEFORE_DATA + 8] = 8; // bits
    abChunk[BEFORE_DATA + 9] = 2; // RGB
    return WriteBytes(pFile, abSignature, sizeof abSignature) && WriteChunk(pFile, "IHDR", abChunk, cbHeader);
}

void StartChunk(PngStream *pStream)
{
    pStream->z.next_out = pStream->abChunk + BEFORE_DATA;
    pStream->z.avail_out = CHUNK_BYTES;
}

bool FinishChunk(PngStream *pStream)
{
    const bool bWritten = WriteChunk(pStream->pFile, "IDAT", pStream->abChunk, CHUNK_BYTES - pStream->z.avail_out);
    StartChunk(pStream);
    return bWritten;
}

std::unique_ptr<PngStream> StartStream(FILE *pFile)
{
    std::unique_ptr<PngStream> pStream(new PngStream);
    pStream->pFile = pFile;
    isal_deflate_init(&pStream->z);
    pStream->z.level = COMPRESSION_LEVEL;
    pStream->z.level_buf = pStream->abLevel;
    pStream->z.level_buf_size = sizeof pStream->abLevel;
    pStream->z.gzip_flag = IGZIP_ZLIB;
    StartChunk(pStream.get());
    return pStream;
}

bool Compress(PngStream *pStream, std::vector<u8> *pBlock, size_t cb, bool bLast)
{
    pStream->z.next_in = pBlock->data();
    pStream->z.avail_in = static_cast<u32>(cb);
    pStream->z.end_of_stream = bLast;
    for (;;) {
        if (isal_deflate(&pStream->z) != COMP_OK)
            return false;
        if (pStream->z.avail_out > 0)
            return !bLast || (pStream->z.internal_state.state == ZSTATE_END && FinishChunk(pStream));
        if (!FinishChunk(pStream))
            return false;
    }
}

void FilterRow(u8 *__restrict pTo, const u8 *__restrict pRgb, size_t cb)
{
    *pTo++ = FILTER_SUB;
    std::memcpy(pTo, pRgb, 3);
    for (size_t i = 3; i < cb; i++)
        pTo[i] = static_cast<u8>(pRgb[i] - pRgb[i - 3]);
}

bool WriteRows(PngStream *pStream, const HostBitmap *hbm)
{
    const size_t cbRgb = static_cast<size_t>(hbm->nWidth) * 3;
    const i32 nRows = RowsInBlock(cbRgb + 1, hbm->nHeight);
    std::vector<u8> rgb(cbRgb), block((cbRgb + 1) * static_cast<size_t>(nRows));
    for (i32 y = hbm->nHeight; y > 0;) {
        const i32 yEnd = std::max(y - nRows, 0);
        u8 *pTo = block.data();
        for (; y > yEnd; pTo += cbRgb + 1) {
            RowToRgb(rgb.data(), BitmapRow(hbm, --y), hbm->nWidth);
            FilterRow(pTo, rgb.data(), cbRgb);
        }
        if (!Compress(pStream, &block, static_cast<size_t>(pTo - block.data()), y == 0))
            return false;
    }
    return true;
}

} // namespace

bool WritePng(const HostBitmap *hbm, FILE *pFile, u32)
{
    u8 abEnd[BEFORE_DATA + AFTER_DATA];
    return WriteHeader(pFile, hbm) && WriteRows(StartStream(pFile).get(), hbm) && WriteChunk(pFile, "IEND", abEnd, 0);
}
