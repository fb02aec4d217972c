// JpegWriter.cpp -- JPEG files
#include "output/PictureWriters.h"

#include <turbojpeg.h>

#include <algorithm>

namespace {

// Colours in thin lines, of which these pictures are full, smear when colour is stored at half the size. Whoever asks
// for less than this does not look for them.
constexpr int FULL_COLOUR_QUALITY = 90;

} // namespace

bool WriteJpeg(const HostBitmap *hbm, FILE *pFile, u32 nQuality)
{
    tjhandle hEncoder = tjInitCompress();
    if (!hEncoder)
        return false;
    const int nWanted = std::clamp(static_cast<int>(std::min(nQuality, 100u)), 1, 100);
    const int nColour = nWanted >= FULL_COLOUR_QUALITY ? TJSAMP_444 : TJSAMP_420;
    unsigned char *pJpeg = nullptr;
    unsigned long cbJpeg = 0;
    const bool bEncoded = tjCompress2(hEncoder, static_cast<const unsigned char *>(hbm->pBits), hbm->nWidth,
                                      static_cast<int>(hbm->cbRow), hbm->nHeight, TJPF_BGRX, &pJpeg, &cbJpeg, nColour,
                                      nWanted, TJFLAG_BOTTOMUP | TJFLAG_ACCURATEDCT) == 0;
    const bool bWritten = bEncoded && WriteBytes(pFile, pJpeg, cbJpeg);
    tjFree(pJpeg);
    tjDestroy(hEncoder);
    return bWritten;
}
