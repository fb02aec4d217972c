// PpmWriter.cpp -- PPM files: a text header and plain bytes
#include "output/PictureWriters.h"
#include "output/PixelRows.h"

#include <algorithm>
#include <vector>

bool WritePpm(const HostBitmap *hbm, FILE *pFile, u32)
{
    if (std::fprintf(pFile, "P6\n%d %d\n255\n", hbm->nWidth, hbm->nHeight) < 0)
        return false;
    const size_t cbRow = static_cast<size_t>(hbm->nWidth) * 3;
    const i32 nRows = RowsInBlock(cbRow, hbm->nHeight);
    std::vector<u8> block(cbRow * static_cast<size_t>(nRows));
    for (i32 y = 0; y < hbm->nHeight;) {
        const i32 yEnd = std::min(y + nRows, hbm->nHeight);
        u8 *pTo = block.data();
        for (; y < yEnd; y++, pTo += cbRow)
            RowToRgb(pTo, BitmapRow(hbm, y), hbm->nWidth);
        if (!WriteBytes(pFile, block.data(), static_cast<size_t>(pTo - block.data())))
            return false;
    }
    return true;
}
