// PictureFile.h -- picture files in memory: PNG, JPEG, GIF (its first image) and BMP, told by their first bytes
#ifndef VORTICADE_PICTURE_FILE_H
#define VORTICADE_PICTURE_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#define PICTURE_SIDE_MAX 32768
#define PICTURE_PIXELS_MAX 40000000       // in memory
#define PICTURE_JPEG_PIXELS_MAX 250000000 // in a JPEG file: those beyond the limit above are decoded smaller
#define PICTURE_FILE_BYTES_MAX (96 << 20)
#define PICTURE_LEVELS 16

// Pixels 0x00RRGGBB without gaps, bottom row first. Empty: there is no picture.
struct Picture {
    std::vector<uint32_t> adwPixel;
    int32_t nWidth, nHeight;
};

// A picture and its halves, quarters and so on, for shrinking without flicker.
struct PictureLevels {
    Picture aLevel[PICTURE_LEVELS];
    int32_t nLevels; // 0: there is no picture
};

enum PictureFault : uint32_t {
    PICTUREFAULT_NONE,
    PICTUREFAULT_NOFILE, // missing, no plain file, or may not be read
    PICTUREFAULT_KIND,   // none of the four formats
    PICTUREFAULT_SIZE,   // too large, or no size at all
    PICTUREFAULT_DAMAGED,
    PICTUREFAULT_MEMORY
};

// Makes room for a picture of this size, black. False if it is too large or there is no memory.
PictureFault MakePicture(Picture *pPicture, int64_t nWidth, int64_t nHeight);

inline uint32_t *PictureRow(Picture *pPicture, int32_t y)
{
    return pPicture->adwPixel.data() + (size_t)y * (size_t)pPicture->nWidth;
}

// Decodes a file's bytes. The picture is complete or untouched in meaning: on a fault it holds nothing of use.
PictureFault DecodePicture(const uint8_t *pbFile, size_t cbFile, Picture *pPicture);
PictureFault DecodeBmp(const uint8_t *pbFile, size_t cbFile, Picture *pPicture);

// Reads and decodes a file and makes its levels. Takes as long as it takes. [any-thread]
PictureFault LoadPicture(const std::string &path, PictureLevels *pLevels);

// A colour over black.
inline uint32_t OverBlack(uint32_t dwColor, uint32_t nAlpha)
{
    const uint32_t dwOuter = (dwColor & 0xFF00FF) * nAlpha + 0x7F007F, dwMiddle = (dwColor & 0xFF00) * nAlpha + 0x7F00;
    return nAlpha == 255 ? dwColor & 0xFFFFFF : (dwOuter >> 8 & 0xFF00FF) | (dwMiddle >> 8 & 0xFF00);
}

#endif
