// PictureBmp.cpp -- BMP files: 1 to 32 bits a pixel, bit fields, run lengths, both directions
#include "PictureFile.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

enum { BMP_RGB, BMP_RLE8, BMP_RLE4, BMP_BITFIELDS, BMP_ALPHABITFIELDS = 6 };

struct BmpFile {
    const uint8_t *pb;
    size_t cb;
    int64_t nWidth, nHeight; // nHeight above 0
    uint32_t nBits, dwCompression;
    bool bTopDown;
    uint32_t adwMask[4]; // red, green, blue, alpha
    uint32_t adwColor[256];
    size_t iPixels;
};

// What lies beyond the end reads as 0.
static uint32_t ByteAt(const BmpFile &bmp, size_t i)
{
    return i < bmp.cb ? bmp.pb[i] : 0;
}

static uint32_t ShortAt(const BmpFile &bmp, size_t i)
{
    return ByteAt(bmp, i) | ByteAt(bmp, i + 1) << 8;
}

static uint32_t WordAt(const BmpFile &bmp, size_t i)
{
    return ShortAt(bmp, i) | ShortAt(bmp, i + 2) << 16;
}

static void ReadMasks(BmpFile *pBmp, uint32_t cbHeader)
{
    static constexpr uint32_t adw16[] = {0x7C00, 0x03E0, 0x001F, 0}, adw32[] = {0xFF0000, 0xFF00, 0xFF, 0};
    std::copy_n(pBmp->nBits == 16 ? adw16 : adw32, 4, pBmp->adwMask);
    if (pBmp->dwCompression != BMP_BITFIELDS && pBmp->dwCompression != BMP_ALPHABITFIELDS)
        return;
    for (size_t i = 0; i < 3; i++)
        pBmp->adwMask[i] = WordAt(*pBmp, 54 + 4 * i);
    pBmp->adwMask[3] = cbHeader >= 56 || pBmp->dwCompression == BMP_ALPHABITFIELDS ? WordAt(*pBmp, 66) : 0;
}

static void ReadColors(BmpFile *pBmp, uint32_t cbHeader)
{
    const uint32_t nMost = pBmp->nBits <= 8 ? 1u << pBmp->nBits : 0;
    const uint32_t nUsed = cbHeader >= 40 ? WordAt(*pBmp, 46) : 0, cbColor = cbHeader == 12 ? 3 : 4;
    const uint32_t nColors = nUsed ? std::min(nUsed, nMost) : nMost;
    for (size_t i = 0; i < nColors; i++) {
        const size_t iColor = 14 + (size_t)cbHeader + i * cbColor;
        pBmp->adwColor[i] = ShortAt(*pBmp, iColor) | ByteAt(*pBmp, iColor + 2) << 16;
    }
}

static bool IsKnownKind(const BmpFile &bmp)
{
    const uint32_t n = bmp.nBits;
    switch (bmp.dwCompression) {
    case BMP_RGB:
        return n == 1 || n == 4 || n == 8 || n == 16 || n == 24 || n == 32;
    case BMP_RLE8:
        return n == 8 && !bmp.bTopDown;
    case BMP_RLE4:
        return n == 4 && !bmp.bTopDown;
    case BMP_BITFIELDS:
    case BMP_ALPHABITFIELDS:
        return n == 16 || n == 32;
    default:
        return false;
    }
}

static PictureFault ReadHeader(BmpFile *pBmp)
{
    const uint32_t cbHeader = WordAt(*pBmp, 14);
    if (pBmp->cb < 26 || (cbHeader != 12 && cbHeader < 40) || cbHeader > 4096)
        return PICTUREFAULT_DAMAGED;
    const bool bOld = cbHeader == 12;
    const int64_t nHeight = bOld ? (int64_t)ShortAt(*pBmp, 20) : (int64_t)(int32_t)WordAt(*pBmp, 22);
    pBmp->nWidth = bOld ? (int64_t)ShortAt(*pBmp, 18) : (int64_t)(int32_t)WordAt(*pBmp, 18);
    pBmp->nHeight = std::abs(nHeight);
    pBmp->bTopDown = nHeight < 0;
    pBmp->nBits = ShortAt(*pBmp, bOld ? 24 : 28);
    pBmp->dwCompression = bOld ? (uint32_t)BMP_RGB : WordAt(*pBmp, 30);
    pBmp->iPixels = WordAt(*pBmp, 10);
    if (!IsKnownKind(*pBmp))
        return PICTUREFAULT_DAMAGED;
    ReadMasks(pBmp, cbHeader);
    ReadColors(pBmp, cbHeader);
    return PICTUREFAULT_NONE;
}

// ---- Plain rows

// The bits of a mask, stretched to 0 to 255.
static uint32_t ChannelOf(uint32_t dwPixel, uint32_t dwMask)
{
    if (!dwMask)
        return 0;
    const uint32_t dwBits = dwMask >> std::countr_zero(dwMask);
    const uint64_t qwValue = (dwPixel & dwMask) >> std::countr_zero(dwMask);
    return (uint32_t)(qwValue * 255 / dwBits);
}

static uint32_t PixelOf(const BmpFile &bmp, size_t iRow, size_t x)
{
    if (bmp.nBits <= 8) {
        const size_t iBit = x * bmp.nBits;
        const uint32_t nShift = 8 - bmp.nBits - (uint32_t)(iBit % 8);
        return bmp.adwColor[ByteAt(bmp, iRow + iBit / 8) >> nShift & ((1u << bmp.nBits) - 1)];
    }
    if (bmp.nBits == 24)
        return ShortAt(bmp, iRow + x * 3) | ByteAt(bmp, iRow + x * 3 + 2) << 16;
    const uint32_t dw = bmp.nBits == 16 ? ShortAt(bmp, iRow + x * 2) : WordAt(bmp, iRow + x * 4);
    const uint32_t dwColor =
        ChannelOf(dw, bmp.adwMask[0]) << 16 | ChannelOf(dw, bmp.adwMask[1]) << 8 | ChannelOf(dw, bmp.adwMask[2]);
    return bmp.adwMask[3] ? OverBlack(dwColor, ChannelOf(dw, bmp.adwMask[3])) : dwColor;
}

static PictureFault ReadRows(const BmpFile &bmp, Picture *pPicture)
{
    const size_t cbRow = ((size_t)bmp.nWidth * bmp.nBits + 31) / 32 * 4;
    if (bmp.iPixels > bmp.cb || bmp.cb - bmp.iPixels < cbRow * (size_t)bmp.nHeight)
        return PICTUREFAULT_DAMAGED;
    for (int32_t y = 0; y < pPicture->nHeight; y++) {
        const size_t iRow = bmp.iPixels + cbRow * (size_t)(bmp.bTopDown ? pPicture->nHeight - 1 - y : y);
        uint32_t *pTo = PictureRow(pPicture, y);
        for (int32_t x = 0; x < pPicture->nWidth; x++)
            pTo[x] = PixelOf(bmp, iRow, (size_t)x);
    }
    return PICTUREFAULT_NONE;
}

// ---- Run lengths

struct RunWriter {
    const BmpFile *pBmp;
    Picture *pPicture;
    int64_t x, y;
};

static void WriteRun(RunWriter *pWriter, uint32_t iColor)
{
    if (pWriter->x < pWriter->pPicture->nWidth && pWriter->y < pWriter->pPicture->nHeight)
        PictureRow(pWriter->pPicture, (int32_t)pWriter->y)[pWriter->x] = pWriter->pBmp->adwColor[iColor];
    pWriter->x++;
}

// nCount pixels: the same one or two over and over, or those from i on.
static void WriteRuns(RunWriter *pWriter, size_t i, uint32_t nCount, bool bRepeat)
{
    const bool bFour = pWriter->pBmp->nBits == 4;
    for (uint32_t k = 0; k < nCount; k++) {
        const uint32_t dw = ByteAt(*pWriter->pBmp, bRepeat ? i : i + (bFour ? k / 2 : k));
        WriteRun(pWriter, !bFour ? dw : k % 2 ? dw & 15 : dw >> 4);
    }
}

static PictureFault ReadRuns(const BmpFile &bmp, Picture *pPicture)
{
    RunWriter writer = {&bmp, pPicture, 0, 0};
    for (size_t i = bmp.iPixels; i + 1 < bmp.cb && writer.y < bmp.nHeight; i += 2) {
        const uint32_t nCount = bmp.pb[i], nCode = bmp.pb[i + 1];
        if (nCount) {
            WriteRuns(&writer, i + 1, nCount, true);
        } else if (nCode == 0) { // end of the row
            writer.x = 0;
            writer.y++;
        } else if (nCode == 1) { // end of the picture
            return PICTUREFAULT_NONE;
        } else if (nCode == 2) { // a step
            writer.x += ByteAt(bmp, i + 2);
            writer.y += ByteAt(bmp, i + 3);
            i += 2;
        } else {
            const size_t cb = bmp.nBits == 4 ? (nCode + 1) / 2 : nCode;
            if (i + 2 + cb > bmp.cb)
                return PICTUREFAULT_DAMAGED;
            WriteRuns(&writer, i + 2, nCode, false);
            i += (cb + 1) & ~(size_t)1;
        }
    }
    // Some writers leave the end mark out.
    return writer.y >= bmp.nHeight - 1 ? PICTUREFAULT_NONE : PICTUREFAULT_DAMAGED;
}

PictureFault DecodeBmp(const uint8_t *pbFile, size_t cbFile, Picture *pPicture)
{
    BmpFile bmp = {};
    bmp.pb = pbFile;
    bmp.cb = cbFile;
    if (const PictureFault eFault = ReadHeader(&bmp))
        return eFault;
    const bool bRuns = bmp.dwCompression == BMP_RLE8 || bmp.dwCompression == BMP_RLE4;
    // Before memory is taken: a plain file holds what it announces.
    const uint64_t cbNeeded = ((uint64_t)std::max<int64_t>(bmp.nWidth, 0) * bmp.nBits + 7) / 8 * (uint64_t)bmp.nHeight;
    if (!bRuns && cbNeeded > cbFile)
        return bmp.nWidth > PICTURE_SIDE_MAX || bmp.nHeight > PICTURE_SIDE_MAX ? PICTUREFAULT_SIZE
                                                                               : PICTUREFAULT_DAMAGED;
    if (const PictureFault eFault = MakePicture(pPicture, bmp.nWidth, bmp.nHeight))
        return eFault;
    return bRuns ? ReadRuns(bmp, pPicture) : ReadRows(bmp, pPicture);
}
