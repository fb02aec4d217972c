// PictureFiles.cpp -- writes bitmaps to picture files
#include "output/pictures/PictureFiles.h"

#include "output/pictures/PictureWriters.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace {

struct FormatName {
    const char16_t *pszText;
    PictureFormat eFormat;
};

// Searched for in this order.
constexpr FormatName asName[] = {
    {u".jpg", PictureFormat::Jpeg},    {u".jpeg", PictureFormat::Jpeg},   {u".png", PictureFormat::Png},
    {u".gif", PictureFormat::Gif},     {u".tif", PictureFormat::Tiff},    {u".tiff", PictureFormat::Tiff},
    {u".fst", PictureFormat::Refused}, {u".ful", PictureFormat::Refused}, {u".ext", PictureFormat::Refused},
    {u".ppm", PictureFormat::Ppm},     {u".bmp", PictureFormat::Bmp},     {u".dib", PictureFormat::Bmp},
    {u".rle", PictureFormat::Bmp},
};

struct FormatWriter {
    PictureFormat eFormat;
    PictureWriterFn pfnWrite;
    bool bRemoveHalf; // an encoder's half-written file is removed; a PPM stays
};

constexpr FormatWriter asWriter[] = {
    {PictureFormat::Jpeg, WriteJpeg, true}, {PictureFormat::Png, WritePng, true}, {PictureFormat::Gif, WriteGif, true},
    {PictureFormat::Tiff, WriteTiff, true}, {PictureFormat::Bmp, WriteBmp, true}, {PictureFormat::Ppm, WritePpm, false},
};

const FormatWriter *FindWriter(PictureFormat eFormat)
{
    for (const FormatWriter &writer : asWriter)
        if (writer.eFormat == eFormat)
            return &writer;
    return nullptr;
}

// The file itself, not a link that leads to it.
void RemoveHalf(const std::string &sPath)
{
    std::error_code failed;
    const std::filesystem::path real = std::filesystem::canonical(sPath, failed);
    if (!failed && std::filesystem::is_regular_file(real, failed))
        std::filesystem::remove(real, failed);
}

} // namespace

PictureFormat PictureFormatOf(const char16_t *pszPath)
{
    for (const FormatName &name : asName)
        if (ContainsNoCase(pszPath, name.pszText))
            return name.eFormat;
    return PictureFormat::Refused;
}

bool CanWritePicture(PictureFormat eFormat)
{
    return FindWriter(eFormat) != nullptr;
}

u32 SavePicture(const HostBitmap *hbm, const char16_t *pszPath, u32 nQuality)
{
    errno = EINVAL;
    if (!hbm || !pszPath || !*pszPath)
        return 0;
    const FormatWriter *pWriter = FindWriter(PictureFormatOf(pszPath));
    if (!pWriter)
        return 0;
    const std::string sPath = NativePathOfNewFile(pszPath);
    FILE *pFile = std::fopen(sPath.c_str(), "wbe");
    if (!pFile)
        return 0;
    errno = 0;
    const bool bWritten = pWriter->pfnWrite(hbm, pFile, nQuality);
    const int nError = bWritten ? 0 : errno;
    const bool bClosed = std::fclose(pFile) == 0;
    if (bWritten && bClosed)
        return 1;
    const int nReason = nError ? nError : errno;
    if (pWriter->bRemoveHalf)
        RemoveHalf(sPath);
    errno = nReason;
    return 0;
}
