// PpmWriter.cpp -- PPM files: a text header and plain bytes
#include "output/PictureWriters.h"

#include <vector>

namespace {

void ToRgb(u8 *pRgb, const u8 *pBgra, i32 nPixels)
{
    for (i32 i = 0; i < nPixels; i++, pRgb += 3, pBgra += 4) {
        pRgb[0] = pBgra[2];
        pRgb[1] = pBgra[1];
        pRgb[2] = pBgra[0];
    }
}

} // namespace

bool WritePpm(const HostBitmap *hbm, FILE *pFile, u32)
{
    if (std::fprintf(pFile, "P6\n%d %d\n255\n", hbm->nWidth, hbm->nHeight) < 0)
        return false;
    std::vector<u8> row(static_cast<size_t>(hbm->nWidth) * 3);
    for (i32 y = 0; y < hbm->nHeight; y++) {
        ToRgb(row.data(), static_cast<const u8 *>(hbm->pBits) + static_cast<u64>(y) * hbm->cbRow, hbm->nWidth);
        if (std::fwrite(row.data(), 1, row.size(), pFile) != row.size())
            return false;
    }
    return true;
}
