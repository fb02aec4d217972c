// PictureFiles_test.cpp -- formats by name, files of every format read back by another program, failed writes
#include "output/pictures/PictureFiles.h"
#include "platform/Bitmap.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const char *const apszEncoded[] = {"a.jpg", "a.png", "a.gif", "a.tif", "a.bmp"};

u32 NoisyPixel(std::mt19937 *pRandom, i32, i32)
{
    return static_cast<u32>((*pRandom)()) & 0x00FFFFFFu; // alpha 0, as the mixer leaves it
}

// Bright and dark areas with soft changes of colour, far from equal in all four corners.
u32 SoftPixel(std::mt19937 *, i32 x, i32 y)
{
    return static_cast<u32>(x * 255 / 160 % 256) << 16 | static_cast<u32>(y * 255 / 130 % 256) << 8 |
           static_cast<u32>((x + y) * 255 / 290 % 256);
}

u32 FewColouredPixel(std::mt19937 *pRandom, i32, i32)
{
    return static_cast<u32>((*pRandom)() % 256) * 0x010305u; // 256 colours that lie close together
}

class PictureFiles : public testing::Test {
  protected:
    void SetUp() override
    {
        hbm = MakePicture(61, 33, NoisyPixel);
    }
    void TearDown() override
    {
        DeleteBitmap(hbm);
    }
    static HostBitmap *MakePicture(i32 nWidth, i32 nHeight, u32 (*pfnPixel)(std::mt19937 *, i32, i32))
    {
        HostBitmap *hbmNew = CreateBitmap(nWidth, nHeight);
        std::mt19937 random(5);
        for (i32 y = 0; y < nHeight; y++)
            for (i32 x = 0; x < nWidth; x++)
                BitmapPixels(hbmNew)[y * nWidth + x] = pfnPixel(&random, x, y);
        return hbmNew;
    }
    void Draw(i32 nWidth, i32 nHeight, u32 (*pfnPixel)(std::mt19937 *, i32, i32))
    {
        DeleteBitmap(hbm);
        hbm = MakePicture(nWidth, nHeight, pfnPixel);
    }
    std::u16string Path(const char *pszName) const
    {
        return folder.Wide(pszName);
    }
    u32 Save(const char *pszName, u32 nQuality = 90) const
    {
        return SavePicture(hbm, Path(pszName).c_str(), nQuality);
    }
    std::string Bytes(const char *pszName) const
    {
        std::ifstream file(folder / pszName, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // The file as another program sees it: RGBA, top row first.
    std::vector<u8> ReadBack(const char *pszName) const
    {
        const std::string sCommand = "convert '" + (folder / pszName).string() + "' -depth 8 rgba:-";
        FILE *pPipe = popen(sCommand.c_str(), "r");
        std::vector<u8> rgba(static_cast<size_t>(hbm->nWidth * hbm->nHeight) * 4 + 1);
        rgba.resize(std::fread(rgba.data(), 1, rgba.size(), pPipe));
        EXPECT_EQ(pclose(pPipe), 0) << sCommand;
        return rgba;
    }
    // The same of the bitmap, opaque.
    std::vector<u8> Wanted() const
    {
        std::vector<u8> rgba;
        for (i32 y = hbm->nHeight - 1; y >= 0; y--)
            for (i32 x = 0; x < hbm->nWidth; x++) {
                const u32 dw = BitmapPixels(hbm)[y * hbm->nWidth + x];
                for (const u32 n : {dw >> 16, dw >> 8, dw, 255u})
                    rgba.push_back(static_cast<u8>(n));
            }
        return rgba;
    }

    TempFolder folder;
    HostBitmap *hbm = nullptr;
};

// Root of the mean square of the differences; huge for pictures of different size.
double Distance(const std::vector<u8> &a, const std::vector<u8> &b)
{
    if (a.size() != b.size())
        return 1e9;
    double fSum = 0;
    for (size_t i = 0; i < a.size(); i++)
        fSum += (a[i] - b[i]) * (a[i] - b[i]);
    return std::sqrt(fSum / static_cast<double>(a.size()));
}

// Means of blocks of 8 x 8 pixels, without what does not fill a block.
std::vector<u8> Blurred(const std::vector<u8> &rgba, size_t nWidth, size_t nHeight)
{
    std::vector<u8> means;
    for (size_t y = 0; y + 8 <= nHeight; y += 8)
        for (size_t x = 0; x + 8 <= nWidth; x += 8)
            for (size_t c = 0; c < 4; c++) {
                size_t nSum = 0;
                for (size_t i = 0; i < 64; i++)
                    nSum += rgba[((y + i / 8) * nWidth + x + i % 8) * 4 + c];
                means.push_back(static_cast<u8>(nSum / 64));
            }
    return means;
}

} // namespace

TEST_F(PictureFiles, TheFirstKnownTextInTheWholePathDecides)
{
    const std::pair<const char16_t *, PictureFormat> asCase[] = {
        {u"/a/b.JPG", PictureFormat::Jpeg},
        {u"/a/b.jPeG", PictureFormat::Jpeg},
        {u"/a/b.PnG", PictureFormat::Png},
        {u"/a/b.gif", PictureFormat::Gif},
        {u"/a/b.tiff", PictureFormat::Tiff},
        {u"/a/b.ppm", PictureFormat::Ppm},
        {u"/a/b.dib", PictureFormat::Bmp},
        {u"/a/b.rle", PictureFormat::Bmp},
        {u"/shots.png/b.bmp", PictureFormat::Png},
        {u"/a/b.jpg.png", PictureFormat::Jpeg},
        {u"/a/b.fst.ppm", PictureFormat::Refused},
        {u"/a/b.ful", PictureFormat::Refused},
        {u"/a/b.webp", PictureFormat::Refused},
        {u"png", PictureFormat::Refused},
        {u"", PictureFormat::Refused},
    };
    for (const auto &[pszPath, eFormat] : asCase)
        EXPECT_EQ(PictureFormatOf(pszPath), eFormat) << ToUtf8(pszPath);
}

TEST_F(PictureFiles, LosslessFormatsHoldEveryPixelOpaqueWithTheTopRowFirst)
{
    for (const i32 nWidth : {1, 2, 17, 61, 300}) {
        Draw(nWidth, 33, NoisyPixel);
        for (const char *pszName : {"a.PNG", "a.tiff", "a.bmp"}) {
            ASSERT_EQ(Save(pszName), 1u) << pszName;
            EXPECT_TRUE(ReadBack(pszName) == Wanted()) << pszName << " " << nWidth;
        }
    }
}

TEST_F(PictureFiles, LargePicturesSpanManyBlocksAndChunks)
{
    Draw(1000, 701, NoisyPixel); // 2 MB that cannot be compressed
    for (const char *pszName : {"a.png", "a.tif", "a.bmp"}) {
        ASSERT_EQ(Save(pszName), 1u) << pszName;
        EXPECT_TRUE(ReadBack(pszName) == Wanted()) << pszName;
    }
    Draw(1000, 701, SoftPixel);
    ASSERT_EQ(Save("soft.png"), 1u);
    EXPECT_TRUE(ReadBack("soft.png") == Wanted());
    EXPECT_LT(fs::file_size(folder / "soft.png"), 1000u * 701 * 3 / 4);
}

TEST_F(PictureFiles, AJpegLooksLikeThePictureAndFollowsTheQuality)
{
    Draw(161, 131, SoftPixel);
    double fLast = 0;
    size_t cbLast = SIZE_MAX;
    for (const u32 nQuality : {100u, 95u, 90u, 60u, 0u}) {
        ASSERT_EQ(Save("a.jpg", nQuality), 1u);
        const double fDistance = Distance(ReadBack("a.jpg"), Wanted());
        EXPECT_GT(fDistance, fLast) << nQuality;
        EXPECT_LT(Bytes("a.jpg").size(), cbLast) << nQuality;
        EXPECT_LT(fDistance, nQuality >= 90 ? 2.0 : 60.0) << nQuality;
        fLast = fDistance;
        cbLast = Bytes("a.jpg").size();
    }
    ASSERT_TRUE(Save("b.png", 90) && Save("c.png", 95));
    EXPECT_EQ(Bytes("b.png"), Bytes("c.png"));
}

TEST_F(PictureFiles, AJpegOfGoodQualityKeepsTheColourOfThinLines)
{
    Draw(64, 64, [](std::mt19937 *, i32 x, i32) { return x % 8 == 3 ? 0xFF0000u : 0x0000FFu; });
    ASSERT_EQ(Save("a.jpg", 95), 1u);
    EXPECT_LT(Distance(ReadBack("a.jpg"), Wanted()), 4.0);
}

TEST_F(PictureFiles, AGifOfFewColoursIsExactAndOneOfManyKeepsTheMeanOfEveryArea)
{
    Draw(123, 45, FewColouredPixel);
    ASSERT_EQ(Save("few.gif"), 1u);
    EXPECT_TRUE(ReadBack("few.gif") == Wanted());

    for (u32 (*pfnPixel)(std::mt19937 *, i32, i32) : {SoftPixel, NoisyPixel}) {
        Draw(160, 128, pfnPixel);
        ASSERT_EQ(Save("many.gif"), 1u);
        const std::vector<u8> rgba = ReadBack("many.gif");
        ASSERT_EQ(rgba.size(), 160u * 128 * 4);
        std::set<u32> colours;
        for (size_t i = 0; i < rgba.size(); i += 4)
            colours.insert(static_cast<u32>(rgba[i] << 16 | rgba[i + 1] << 8 | rgba[i + 2]));
        EXPECT_LE(colours.size(), 256u);
        EXPECT_GT(colours.size(), 200u);
        EXPECT_LT(Distance(Blurred(rgba, 160, 128), Blurred(Wanted(), 160, 128)), 2.0);
        EXPECT_LT(Distance(rgba, Wanted()), 20.0);
    }
}

TEST_F(PictureFiles, APpmHoldsAHeaderAndTheRowsInMemoryOrder)
{
    const std::vector<u32> before(BitmapPixels(hbm), BitmapPixels(hbm) + 61 * 33);
    ASSERT_EQ(Save("shot.ppm"), 1u);
    const std::string bytes = Bytes("shot.ppm");
    const std::string header = "P6\n61 33\n255\n";
    ASSERT_EQ(bytes.size(), header.size() + 61 * 33 * 3);
    EXPECT_EQ(bytes.substr(0, header.size()), header);
    for (size_t i = 0; i < before.size(); i++) {
        const auto byte = [&](size_t n) { return static_cast<u8>(bytes[header.size() + i * 3 + n]); };
        ASSERT_EQ(static_cast<u32>(byte(0)) << 16 | static_cast<u32>(byte(1)) << 8 | byte(2), before[i]);
    }
    EXPECT_TRUE(std::equal(before.begin(), before.end(), BitmapPixels(hbm)));
}

TEST_F(PictureFiles, WhatCannotBeSavedReturnsZeroAndLeavesNoFile)
{
    EXPECT_EQ(SavePicture(nullptr, Path("a.png").c_str(), 90), 0u);
    EXPECT_EQ(SavePicture(hbm, nullptr, 90), 0u);
    EXPECT_EQ(SavePicture(hbm, u"", 90), 0u);
    EXPECT_EQ(Save("a.fst"), 0u);
    EXPECT_EQ(Save("a"), 0u);
    EXPECT_EQ(Save("missing/a.png"), 0u);
    EXPECT_EQ(Save("missing/a.ppm"), 0u);
    EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(PictureFiles, AnExistingFileIsOverwritten)
{
    folder.Write("a.png", std::string(100000, 'x'));
    ASSERT_EQ(Save("a.png"), 1u);
    EXPECT_LT(fs::file_size(folder / "a.png"), 20000u);
    EXPECT_EQ(Bytes("a.png").substr(1, 3), "PNG");
}

TEST_F(PictureFiles, AFullDiskIsToldAndAHalfWrittenEncodedFileIsRemovedButAPpmStays)
{
    Draw(400, 300, NoisyPixel);
    rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto pfnBefore = std::signal(SIGXFSZ, SIG_IGN);
    for (const char *pszName : apszEncoded) {
        ASSERT_EQ(Save(pszName), 1u);
        const rlimit half = {fs::file_size(folder / pszName) / 2, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &half);
        const u32 bSaved = Save(pszName);
        const int nError = errno;
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(bSaved, 0u) << pszName;
        EXPECT_EQ(nError, EFBIG) << pszName;
        EXPECT_FALSE(fs::exists(folder / pszName)) << pszName;
    }
    fs::create_symlink("real", folder / "link.bmp");
    const rlimit small = {1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ(Save("a.ppm"), 0u);
    EXPECT_EQ(Save("link.bmp"), 0u);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, pfnBefore);
    EXPECT_EQ(fs::file_size(folder / "a.ppm"), 1000u);
    EXPECT_TRUE(fs::is_symlink(folder / "link.bmp"));
    EXPECT_FALSE(fs::exists(folder / "real"));

    // What fails only when the last bytes leave the buffer.
    fs::create_symlink("/dev/full", folder / "b.jpg");
    EXPECT_EQ(Save("b.jpg"), 0u);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_TRUE(fs::is_symlink(folder / "b.jpg")) << "and the device is left alone";
}

TEST_F(PictureFiles, ManyThreadsSaveAtOnceWithTheSameBytes)
{
    Draw(200, 150, SoftPixel);
    for (const char *pszName : apszEncoded)
        ASSERT_EQ(Save(pszName), 1u);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++)
        threads.emplace_back([this, i] {
            for (const char *pszName : apszEncoded)
                EXPECT_EQ(Save((std::to_string(i) + pszName).c_str()), 1u);
        });
    for (std::thread &thread : threads)
        thread.join();
    for (int i = 0; i < 4; i++)
        for (const char *pszName : apszEncoded)
            EXPECT_TRUE(Bytes((std::to_string(i) + pszName).c_str()) == Bytes(pszName)) << pszName;
}
