// BmpWriter.cpp -- Windows bitmaps: 24 bits a pixel, which leaves no room for transparency
#include "output/pictures/PictureWriters.h"
#include "output/pictures/PixelRows.h"

#include <vector>

namespace {

constexpr u32 HEADER_BYTES = 14 + 40; // of the file and of the picture
constexpr u32 DOTS_A_METRE = 3780;    // 96 an inch

// Appends the number, low byte first.
void Put(std::vector<u8> *pBytes, u32 n, u32 cb)
{
    for (u32 i = 0; i < cb; i++)
        pBytes->push_back(static_cast<u8>(n >> (8 * i)));
}

std::vector<u8> MakeHeader(const HostBitmap *hbm, u64 cbRow)
{
    const u32 cbPixels = static_cast<u32>(cbRow * static_cast<u64>(hbm->nHeight)); // at most 3.2 GB
    std::vector<u8> header = {'B', 'M'};
    Put(&header, HEADER_BYTES + cbPixels, 4);
    Put(&header, 0, 4);
    Put(&header, HEADER_BYTES, 4);
    Put(&header, 40, 4);
    Put(&header, static_cast<u32>(hbm->nWidth), 4);
    Put(&header, static_cast<u32>(hbm->nHeight), 4); // positive: the bottom row comes first
    Put(&header, 1, 2);
    Put(&header, 24, 2);
    Put(&header, 0, 4); // not compressed
    Put(&header, cbPixels, 4);
    Put(&header, DOTS_A_METRE, 4);
    Put(&header, DOTS_A_METRE, 4);
    Put(&header, 0, 4);
    Put(&header, 0, 4);
    return header;
}

} // namespace

bool WriteBmp(const HostBitmap *hbm, FILE *pFile, u32)
{
    const size_t cbRow = (static_cast<size_t>(hbm->nWidth) * 3 + 3) / 4 * 4;
    const std::vector<u8> header = MakeHeader(hbm, cbRow);
    if (!WriteBytes(pFile, header.data(), header.size()))
        return false;
    return WriteRowBlocks(hbm, pFile, cbRow, RowToBgr);
}
