// PictureFile_fuzz.cpp -- the picture module's reading of hostile files: PNG, JPEG, GIF, BMP
#include "stock/FDPicture/PictureFile.h"

#include "platform/Assert.h"
#include "platform/BaseTypes.h"

extern "C" int LLVMFuzzerTestOneInput(const u8 *pData, size_t cb)
{
    Picture picture = {};
    if (DecodePicture(pData, cb, &picture))
        return 0;
    VD_ASSERT(picture.nWidth > 0 && picture.nHeight > 0);
    VD_ASSERT(picture.adwPixel.size() == static_cast<size_t>(picture.nWidth) * static_cast<size_t>(picture.nHeight));
    for (const u32 dwPixel : picture.adwPixel)
        VD_ASSERT(dwPixel <= 0xFFFFFF);
    return 0;
}
