// GifWriter.cpp -- GIF files
#include "output/pictures/ColourReduction.h"
#include "output/pictures/PictureWriters.h"

#include <gif_lib.h>

namespace {

int Write(GifFileType *pGif, const GifByteType *p, int cb)
{
    return static_cast<int>(std::fwrite(p, 1, static_cast<size_t>(cb), static_cast<FILE *>(pGif->UserData)));
}

// The table of colours that the format wants: a power of two of them.
ColorMapObject *MakeColourMap(const ReducedPicture &reduced)
{
    int nColours = 2;
    while (nColours < static_cast<int>(reduced.nColours))
        nColours *= 2;
    ColorMapObject *pMap = GifMakeMapObject(nColours, nullptr);
    for (u32 i = 0; pMap && i < reduced.nColours; i++)
        pMap->Colors[i] = {reduced.abRgb[i * 3], reduced.abRgb[i * 3 + 1], reduced.abRgb[i * 3 + 2]};
    return pMap;
}

bool Encode(GifFileType *pGif, const ColorMapObject *pMap, ReducedPicture *pReduced, const HostBitmap *hbm)
{
    if (EGifPutScreenDesc(pGif, hbm->nWidth, hbm->nHeight, 8, 0, pMap) == GIF_ERROR ||
        EGifPutImageDesc(pGif, 0, 0, hbm->nWidth, hbm->nHeight, false, nullptr) == GIF_ERROR)
        return false;
    for (i32 y = 0; y < hbm->nHeight; y++)
        if (EGifPutLine(pGif, pReduced->indexes.data() + static_cast<size_t>(y) * static_cast<size_t>(hbm->nWidth),
                        hbm->nWidth) == GIF_ERROR)
            return false;
    return true;
}

} // namespace

bool WriteGif(const HostBitmap *hbm, FILE *pFile, u32)
{
    ReducedPicture reduced;
    ReduceColours(&reduced, hbm);
    ColorMapObject *pMap = MakeColourMap(reduced);
    GifFileType *pGif = pMap ? EGifOpen(pFile, Write, nullptr) : nullptr;
    const bool bEncoded = pGif && Encode(pGif, pMap, &reduced, hbm);
    const bool bClosed = pGif && EGifCloseFile(pGif, nullptr) == GIF_OK;
    GifFreeMapObject(pMap);
    return bEncoded && bClosed && !std::ferror(pFile);
}
