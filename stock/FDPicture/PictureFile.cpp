// PictureFile.cpp -- picture files through the picture libraries
#include "PictureFile.h"

#include <gif_lib.h>
#include <png.h>
#include <turbojpeg.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

PictureFault MakePicture(Picture *pPicture, int64_t nWidth, int64_t nHeight)
{
    if (nWidth < 1 || nHeight < 1 || nWidth > PICTURE_SIDE_MAX || nHeight > PICTURE_SIDE_MAX ||
        nWidth * nHeight > PICTURE_PIXELS_MAX)
        return PICTUREFAULT_SIZE;
    try {
        pPicture->adwPixel.assign((size_t)(nWidth * nHeight), 0);
    } catch (const std::bad_alloc &) {
        return PICTUREFAULT_MEMORY;
    }
    pPicture->nWidth = (int32_t)nWidth;
    pPicture->nHeight = (int32_t)nHeight;
    return PICTUREFAULT_NONE;
}

// ---- PNG

static PictureFault DecodePng(const uint8_t *pbFile, size_t cbFile, Picture *pPicture)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, pbFile, cbFile))
        return PICTUREFAULT_DAMAGED;
    image.format = PNG_FORMAT_BGRA;
    PictureFault eFault = MakePicture(pPicture, image.width, image.height);
    // A negative stride: the bottom row first.
    if (!eFault &&
        !png_image_finish_read(&image, nullptr, pPicture->adwPixel.data(), -(png_int_32)image.width * 4, nullptr))
        eFault = PICTUREFAULT_DAMAGED;
    png_image_free(&image);
    for (uint32_t &dwPixel : pPicture->adwPixel)
        dwPixel = OverBlack(dwPixel, dwPixel >> 24);
    return eFault;
}

// ---- JPEG

// The largest size that is within the limit; 0 if there is none.
static tjscalingfactor ScaleOfJpeg(int nWidth, int nHeight)
{
    int nFactors = 0;
    const tjscalingfactor *pFactors = tjGetScalingFactors(&nFactors);
    tjscalingfactor best = {0, 1};
    for (int i = 0; pFactors && i < nFactors; i++) {
        const tjscalingfactor f = pFactors[i];
        const int64_t nScaledWidth = TJSCALED((int64_t)nWidth, f), nScaledHeight = TJSCALED((int64_t)nHeight, f);
        if (f.num <= f.denom && nScaledWidth * nScaledHeight <= PICTURE_PIXELS_MAX &&
            f.num * best.denom > best.num * f.denom)
            best = f;
    }
    return best;
}

static PictureFault DecodeJpeg(const uint8_t *pbFile, size_t cbFile, Picture *pPicture)
{
    const std::unique_ptr<void, int (*)(tjhandle)> reader(tjInitDecompress(), tjDestroy);
    if (!reader)
        return PICTUREFAULT_MEMORY;
    int nWidth = 0, nHeight = 0, nSubsampling = 0, nSpace = 0;
    if (tjDecompressHeader3(reader.get(), pbFile, cbFile, &nWidth, &nHeight, &nSubsampling, &nSpace))
        return PICTUREFAULT_DAMAGED;
    if ((int64_t)nWidth * nHeight > PICTURE_JPEG_PIXELS_MAX)
        return PICTUREFAULT_SIZE;
    const tjscalingfactor scale = ScaleOfJpeg(nWidth, nHeight);
    nWidth = TJSCALED(nWidth, scale);
    nHeight = TJSCALED(nHeight, scale);
    if (const PictureFault eFault = MakePicture(pPicture, nWidth, nHeight))
        return eFault;
    // A file of endless scans would keep the processor busy for minutes.
    const int nFlags = TJFLAG_BOTTOMUP | TJFLAG_LIMITSCANS;
    const int nResult = tjDecompress2(reader.get(), pbFile, cbFile, (unsigned char *)pPicture->adwPixel.data(), nWidth,
                                      0, nHeight, TJPF_BGRX, nFlags);
    if (nResult && tjGetErrorCode(reader.get()) != TJERR_WARNING)
        return PICTUREFAULT_DAMAGED;
    for (uint32_t &dwPixel : pPicture->adwPixel)
        dwPixel &= 0xFFFFFF;
    return PICTUREFAULT_NONE;
}

// ---- GIF

struct ByteSource {
    const uint8_t *pb;
    size_t cbLeft;
};

static int ReadGifBytes(GifFileType *pGif, GifByteType *pbTo, int nWanted)
{
    ByteSource *pSource = (ByteSource *)pGif->UserData;
    const size_t cb = std::min((size_t)std::max(nWanted, 0), pSource->cbLeft);
    memcpy(pbTo, pSource->pb, cb);
    *pSource = {pSource->pb + cb, pSource->cbLeft - cb};
    return (int)cb;
}

static void CloseGif(GifFileType *pGif)
{
    DGifCloseFile(pGif, nullptr);
}

// Goes on to the first image; *pnTransparent is its see-through colour, -1 if it has none. False if there is no image.
static bool FindGifImage(GifFileType *pGif, int *pnTransparent)
{
    GifRecordType eType;
    *pnTransparent = -1;
    while (DGifGetRecordType(pGif, &eType) == GIF_OK && eType != TERMINATE_RECORD_TYPE) {
        if (eType == IMAGE_DESC_RECORD_TYPE)
            return DGifGetImageDesc(pGif) == GIF_OK;
        int nCode = 0;
        GifByteType *pbBlock = nullptr;
        if (eType != EXTENSION_RECORD_TYPE || DGifGetExtension(pGif, &nCode, &pbBlock) != GIF_OK)
            return false;
        while (pbBlock) {
            if (nCode == GRAPHICS_EXT_FUNC_CODE && pbBlock[0] >= 4)
                *pnTransparent = pbBlock[1] & 1 ? pbBlock[4] : -1;
            if (DGifGetExtensionNext(pGif, &pbBlock) != GIF_OK)
                return false;
        }
    }
    return false;
}

struct GifRows {
    const ColorMapObject *pColors;
    int nTransparent;
    Picture *pPicture;
    std::vector<GifPixelType> row;
};

static bool ReadGifRow(GifFileType *pGif, GifRows *pRows, int y)
{
    if (DGifGetLine(pGif, pRows->row.data(), pGif->Image.Width) != GIF_OK)
        return false;
    const int yTo = pRows->pPicture->nHeight - 1 - pGif->Image.Top - y;
    uint32_t *pTo = PictureRow(pRows->pPicture, yTo) + pGif->Image.Left;
    for (int x = 0; x < pGif->Image.Width; x++) {
        const int i = pRows->row[(size_t)x];
        if (i == pRows->nTransparent || i >= pRows->pColors->ColorCount)
            continue;
        const GifColorType &c = pRows->pColors->Colors[i];
        pTo[x] = (uint32_t)c.Red << 16 | (uint32_t)c.Green << 8 | c.Blue;
    }
    return true;
}

static PictureFault ReadGifRows(GifFileType *pGif, GifRows *pRows)
{
    static constexpr int anFirst[] = {0, 4, 2, 1}, anStep[] = {8, 8, 4, 2};
    const int nPasses = pGif->Image.Interlace ? 4 : 1;
    for (int iPass = 0; iPass < nPasses; iPass++)
        for (int y = nPasses > 1 ? anFirst[iPass] : 0; y<pGif->Image.Height; y += nPasses> 1 ? anStep[iPass] : 1)
            if (!ReadGifRow(pGif, pRows, y))
                return PICTUREFAULT_DAMAGED;
    return PICTUREFAULT_NONE;
}

static PictureFault DecodeGif(const uint8_t *pbFile, size_t cbFile, Picture *pPicture)
{
    ByteSource source = {pbFile, cbFile};
    const std::unique_ptr<GifFileType, void (*)(GifFileType *)> gif(DGifOpen(&source, ReadGifBytes, nullptr), CloseGif);
    GifRows rows = {nullptr, -1, pPicture, {}};
    if (!gif || !FindGifImage(gif.get(), &rows.nTransparent))
        return PICTUREFAULT_DAMAGED;
    const GifImageDesc &image = gif->Image;
    rows.pColors = image.ColorMap ? image.ColorMap : gif->SColorMap;
    if (!rows.pColors || image.Left < 0 || image.Top < 0 || image.Width < 1 || image.Height < 1)
        return PICTUREFAULT_DAMAGED;
    const int64_t nWidth = std::max<int64_t>(gif->SWidth, (int64_t)image.Left + image.Width);
    const int64_t nHeight = std::max<int64_t>(gif->SHeight, (int64_t)image.Top + image.Height);
    if (const PictureFault eFault = MakePicture(pPicture, nWidth, nHeight))
        return eFault;
    rows.row.resize((size_t)image.Width);
    return ReadGifRows(gif.get(), &rows);
}

// ---- Files

PictureFault DecodePicture(const uint8_t *pbFile, size_t cbFile, Picture *pPicture)
{
    static constexpr struct {
        const char *pbStart;
        size_t cbStart;
        PictureFault (*pfnDecode)(const uint8_t *, size_t, Picture *);
    } aFormat[] = {{"\x89PNG\r\n\x1A\n", 8, DecodePng},
                   {"\xFF\xD8\xFF", 3, DecodeJpeg},
                   {"GIF8", 4, DecodeGif},
                   {"BM", 2, DecodeBmp}};
    for (const auto &format : aFormat)
        if (cbFile >= format.cbStart && memcmp(pbFile, format.pbStart, format.cbStart) == 0)
            return format.pfnDecode(pbFile, cbFile, pPicture);
    return PICTUREFAULT_KIND;
}

static PictureFault ReadBytes(int nFile, std::vector<uint8_t> *pBytes)
{
    struct stat facts;
    if (fstat(nFile, &facts) != 0 || !S_ISREG(facts.st_mode))
        return PICTUREFAULT_NOFILE;
    if (facts.st_size > PICTURE_FILE_BYTES_MAX)
        return PICTUREFAULT_SIZE;
    pBytes->resize((size_t)facts.st_size);
    size_t cbRead = 0;
    while (cbRead < pBytes->size()) {
        const ssize_t cb = read(nFile, pBytes->data() + cbRead, pBytes->size() - cbRead);
        if (cb <= 0) // it may have shrunk meanwhile
            break;
        cbRead += (size_t)cb;
    }
    pBytes->resize(cbRead);
    return PICTUREFAULT_NONE;
}

// The mean of four pixels each.
static bool HalvePicture(const Picture &from, Picture *pTo)
{
    if (MakePicture(pTo, std::max(from.nWidth / 2, 1), std::max(from.nHeight / 2, 1)))
        return false;
    const size_t xNext = from.nWidth > 1 ? 1 : 0, yNext = from.nHeight > 1 ? (size_t)from.nWidth : 0;
    for (int32_t y = 0; y < pTo->nHeight; y++) {
        const uint32_t *pFrom = from.adwPixel.data() + (size_t)y * 2 * (size_t)from.nWidth;
        uint32_t *pRow = PictureRow(pTo, y);
        for (int32_t x = 0; x < pTo->nWidth; x++, pFrom += 2) {
            const uint32_t a = pFrom[0], b = pFrom[xNext], c = pFrom[yNext], d = pFrom[xNext + yNext];
            const uint32_t dwOuter = (a & 0xFF00FF) + (b & 0xFF00FF) + (c & 0xFF00FF) + (d & 0xFF00FF) + 0x20002;
            const uint32_t dwMiddle = (a & 0xFF00) + (b & 0xFF00) + (c & 0xFF00) + (d & 0xFF00) + 0x200;
            pRow[x] = (dwOuter >> 2 & 0xFF00FF) | (dwMiddle >> 2 & 0xFF00);
        }
    }
    return true;
}

static void MakeLevels(PictureLevels *pLevels)
{
    pLevels->nLevels = 1;
    while (pLevels->nLevels < PICTURE_LEVELS) {
        const Picture &last = pLevels->aLevel[pLevels->nLevels - 1];
        if ((last.nWidth == 1 && last.nHeight == 1) || !HalvePicture(last, &pLevels->aLevel[pLevels->nLevels]))
            break;
        pLevels->nLevels++;
    }
}

PictureFault LoadPicture(const std::string &path, PictureLevels *pLevels)
{
    *pLevels = {};
    const int nFile = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); // never waits for a pipe's other end
    if (nFile < 0)
        return PICTUREFAULT_NOFILE;
    PictureFault eFault = PICTUREFAULT_MEMORY;
    try {
        std::vector<uint8_t> bytes;
        eFault = ReadBytes(nFile, &bytes);
        if (!eFault)
            eFault = DecodePicture(bytes.data(), bytes.size(), &pLevels->aLevel[0]);
        if (!eFault)
            MakeLevels(pLevels);
    } catch (const std::bad_alloc &) {
        eFault = PICTUREFAULT_MEMORY;
    }
    close(nFile);
    if (eFault)
        *pLevels = {};
    return eFault;
}
