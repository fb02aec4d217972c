// PictureFiles_test.cpp -- formats by name, PNG and PPM files read back, failed writes
#include "output/PictureFiles.h"
#include "platform/Bitmap.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <gtest/gtest.h>
#include <png.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class PictureFiles : public testing::Test {
  protected:
    void SetUp() override
    {
        folder = fs::temp_directory_path() / ("pictures-" + std::to_string(getpid()));
        fs::create_directories(folder);
        hbm = CreateBitmap(61, 33);
        std::mt19937 random(5);
        for (i32 i = 0; i < 61 * 33; i++)
            BitmapPixels(hbm)[i] = static_cast<u32>(random()) & 0x00FFFFFFu; // alpha 0, as the mixer leaves it
    }
    void TearDown() override
    {
        DeleteBitmap(hbm);
        fs::remove_all(folder);
    }
    std::u16string Path(const char *pszName) const
    {
        return FromUtf8((folder / pszName).string());
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

    fs::path folder;
    HostBitmap *hbm = nullptr;
};

// The picture of a PNG file as RGBA, top row first.
std::vector<u8> ReadPng(const fs::path &path, png_image &image)
{
    image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return {};
    const bool bOpaque = !(image.format & PNG_FORMAT_FLAG_ALPHA);
    image.format = PNG_FORMAT_RGBA;
    std::vector<u8> rgba(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, rgba.data(), 0, nullptr);
    return bOpaque ? rgba : std::vector<u8>();
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

TEST_F(PictureFiles, APngHoldsThePictureOpaqueWithTheTopRowFirst)
{
    ASSERT_EQ(Save("shot.PNG"), 1u);
    png_image image;
    const std::vector<u8> rgba = ReadPng(folder / "shot.PNG", image);
    ASSERT_EQ(rgba.size(), 61u * 33 * 4);
    for (u32 y = 0; y < 33; y++)
        for (u32 x = 0; x < 61; x++) {
            const u32 nPixel = BitmapPixels(hbm)[(32 - y) * 61 + x];
            const u8 *p = &rgba[(y * 61 + x) * 4];
            ASSERT_EQ(p[0] << 16 | p[1] << 8 | p[2], static_cast<int>(nPixel)) << x << ", " << y;
            ASSERT_EQ(p[3], 255);
        }
}

TEST_F(PictureFiles, QualityDoesNotTouchAPng)
{
    ASSERT_TRUE(Save("a.png", 90) && Save("b.png", 95));
    EXPECT_EQ(Bytes("a.png"), Bytes("b.png"));
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
    std::ofstream(folder / "a.png") << std::string(100000, 'x');
    ASSERT_EQ(Save("a.png"), 1u);
    EXPECT_LT(fs::file_size(folder / "a.png"), 20000u);
    EXPECT_EQ(Bytes("a.png").substr(1, 3), "PNG");
}

TEST_F(PictureFiles, AHalfWrittenEncodedFileIsRemovedAndAPpmStays)
{
    if (!fs::exists("/dev/full"))
        GTEST_SKIP() << "no device that is always full";
    fs::create_symlink("/dev/full", folder / "a.png");
    fs::create_symlink("/dev/full", folder / "a.ppm");
    EXPECT_EQ(Save("a.png"), 0u);
    EXPECT_EQ(Save("a.ppm"), 0u);
    EXPECT_FALSE(fs::is_symlink(folder / "a.png"));
    EXPECT_TRUE(fs::is_symlink(folder / "a.ppm"));
}
