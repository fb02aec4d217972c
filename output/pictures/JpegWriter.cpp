// JpegWriter.cpp -- JPEG files
#include "output/pictures/PictureWriters.h"

#include <turbojpeg.h>

#include <algorithm>
#include <cstdlib>

namespace {

// Colours in thin lines, of which these pictures are full, smear when colour is stored at half the size. Whoever asks
// for less than this does not look for them.
constexpr int FULL_COLOUR_QUALITY = 90;

// Of each thread that saves pictures, until it ends: fresh memory for each picture would cost half as much time again
// as encoding it.
struct JpegEncoder {
    tjhandle hEncoder = nullptr;
    unsigned char *pJpeg = nullptr;
    unsigned long cbRoom = 0;

    ~JpegEncoder()
    {
        std::free(pJpeg);
        if (hEncoder)
            tjDestroy(hEncoder);
    }
};
thread_local JpegEncoder Encoder;

bool PrepareEncoder(unsigned long cbWanted)
{
    if (!Encoder.hEncoder)
        Encoder.hEncoder = tjInitCompress();
    if (cbWanted > Encoder.cbRoom) {
        std::free(Encoder.pJpeg);
        Encoder.pJpeg = static_cast<unsigned char *>(std::malloc(cbWanted));
        Encoder.cbRoom = Encoder.pJpeg ? cbWanted : 0;
    }
    return Encoder.hEncoder && Encoder.pJpeg;
}

} // namespace

bool WriteJpeg(const HostBitmap *hbm, FILE *pFile, u32 nQuality)
{
    const int nWanted = std::clamp(static_cast<int>(std::min(nQuality, 100u)), 1, 100);
    const int nColour = nWanted >= FULL_COLOUR_QUALITY ? TJSAMP_444 : TJSAMP_420;
    // Room for the worst picture of the size; of what the encoder does not touch, the system gives nothing.
    if (!PrepareEncoder(tjBufSize(hbm->nWidth, hbm->nHeight, nColour)))
        return false;
    unsigned long cbJpeg = Encoder.cbRoom;
    return tjCompress2(Encoder.hEncoder, static_cast<const unsigned char *>(hbm->pBits), hbm->nWidth,
                       static_cast<int>(hbm->cbRow), hbm->nHeight, TJPF_BGRX, &Encoder.pJpeg, &cbJpeg, nColour, nWanted,
                       TJFLAG_BOTTOMUP | TJFLAG_ACCURATEDCT | TJFLAG_NOREALLOC) == 0 &&
           WriteBytes(pFile, Encoder.pJpeg, cbJpeg);
}
