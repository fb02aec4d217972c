// PpmWriter.cpp -- PPM files: a text header and plain bytes
#include "output/pictures/PictureWriters.h"
#include "output/pictures/PixelRows.h"

bool WritePpm(const HostBitmap *hbm, FILE *pFile, u32)
{
    if (std::fprintf(pFile, "P6\n%d %d\n255\n", hbm->nWidth, hbm->nHeight) < 0)
        return false;
    return WriteRowBlocks(hbm, pFile, static_cast<size_t>(hbm->nWidth) * 3, RowToRgb);
}
