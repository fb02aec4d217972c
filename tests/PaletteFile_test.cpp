// PaletteFile_test.cpp -- palette files of all three formats, damaged ones, and the resampling of palettes
#include "stock/shared/PaletteFile.h"

#include "platform/Files.h"
#include "platform/Text.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>

#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Palette {
    u32 bRead = 0;
    i32 nColors = -1;
    u8 abRed[PALETTE_COLORS_MAX], abGreen[PALETTE_COLORS_MAX], abBlue[PALETTE_COLORS_MAX];

    Palette()
    {
        for (u8 *p : {abRed, abGreen, abBlue})
            std::fill_n(p, PALETTE_COLORS_MAX, u8{0xEE});
    }
    u32 Color(i32 i) const
    {
        return static_cast<u32>(abRed[i] << 16 | abGreen[i] << 8 | abBlue[i]);
    }
};

Palette ReadBytes(const std::string &bytes)
{
    Palette pal;
    // A copy of exactly this size: the address sanitizer sees every look beyond it.
    const std::vector<char> copy(bytes.begin(), bytes.end());
    pal.bRead = ReadPaletteBytes({copy.data(), copy.size()}, &pal.nColors, pal.abRed, pal.abGreen, pal.abBlue);
    return pal;
}

std::string Word(u32 dw)
{
    return {static_cast<char>(dw), static_cast<char>(dw >> 8), static_cast<char>(dw >> 16),
            static_cast<char>(dw >> 24)};
}

// n bytes, each its own place times 7.
std::string Ramp(size_t n)
{
    std::string s(n, 0);
    for (size_t i = 0; i < n; i++)
        s[i] = static_cast<char>(i * 7);
    return s;
}

std::string Full(i32 nColors, size_t cb)
{
    return std::string("\0i\0B", 4) + Word(static_cast<u32>(nColors)) + Ramp(cb);
}

std::string Short(u32 dwSize, size_t cb)
{
    return std::string("\0B\0B", 4) + Word(dwSize) + Ramp(cb);
}

void ExpectRefused(const std::string &bytes)
{
    const Palette pal = ReadBytes(bytes);
    EXPECT_EQ(0u, pal.bRead) << bytes.size();
    EXPECT_EQ(0, pal.nColors);
    EXPECT_EQ(0xEEEEEEu, pal.Color(0)) << "what a caller has stays";
}

class PaletteFile : public ::testing::Test {
  protected:
    std::u16string Write(const char *pszName, const std::string &bytes) const
    {
        return FromUtf8(folder.Write(pszName, bytes).string());
    }
    static Palette Read(const std::u16string &path)
    {
        Palette pal;
        pal.bRead = ReadPaletteFile(path, &pal.nColors, pal.abRed, pal.abGreen, pal.abBlue);
        return pal;
    }
    TempFolder folder;
};

// ---- Resampling once more, in double precision: between the ends the parabola of Lagrange through each colour and the
// middles between it and its neighbours.
double Resampled(const std::vector<u8> &a, int i)
{
    const int n = static_cast<int>(a.size());
    const double p = i * (n - 1) * 0.0004885198;
    const auto x = [&](int j) { return a[static_cast<size_t>(j)] / 255.0; };
    if (p <= 0.5 || p >= n - 1.5) {
        const int j = std::min(static_cast<int>(p), n - 2);
        return p >= n - 1 ? x(n - 1) : n < 2 ? x(0) : x(j) * (j + 1 - p) + x(j + 1) * (p - j);
    }
    const int k = static_cast<int>(std::floor(p + 0.5));
    const double t = 2 * (p - k); // -1 to 1 from middle to middle
    const double fLeft = (x(k - 1) + x(k)) / 2, fRight = (x(k) + x(k + 1)) / 2;
    return std::min(std::fabs(fLeft * t * (t - 1) / 2 + x(k) * (1 - t * t) + fRight * t * (t + 1) / 2), 1.0);
}

} // namespace

TEST_F(PaletteFile, AFullPaletteHasAsManyColorsAsItSays)
{
    for (const i32 n : {1, 2, 3, 255, 2047, 2048}) {
        const std::string bytes = Full(n, 3 * static_cast<size_t>(n));
        const Palette pal = Read(Write("full.pal", bytes));
        ASSERT_EQ(1u, pal.bRead) << n;
        ASSERT_EQ(n, pal.nColors);
        EXPECT_EQ(0x00070Eu, pal.Color(0));
        EXPECT_EQ(static_cast<u8>((3 * n - 1) * 7), pal.abBlue[n - 1]);
        if (n < PALETTE_COLORS_MAX) {
            EXPECT_EQ(0xEEEEEEu, pal.Color(n));
        }
        EXPECT_EQ(n, ReadBytes(bytes + "more").nColors);
        ExpectRefused(bytes.substr(0, bytes.size() - 1));
    }
    for (const i32 n : {0, -1, std::numeric_limits<i32>::min()}) {
        const Palette none = ReadBytes(Full(n, 0));
        EXPECT_TRUE(none.bRead == 1 && none.nColors == 0) << n;
    }
    for (const i32 n : {2049, 0x10000, std::numeric_limits<i32>::max()})
        ExpectRefused(Full(n, 3 * 2049));
}

TEST_F(PaletteFile, AShortPaletteHas236ColorsAndItsSizeWord)
{
    const Palette pal = Read(Write("short.col", Short(944, 944)));
    ASSERT_EQ(1u, pal.bRead);
    ASSERT_EQ(236, pal.nColors);
    EXPECT_EQ(0x00070Eu, pal.Color(0));
    EXPECT_EQ(0x1C232Au, pal.Color(1)) << "the fourth byte is passed over";
    EXPECT_EQ(static_cast<u8>((235 * 4 + 2) * 7), pal.abBlue[235]);
    EXPECT_EQ(0xEEEEEEu, pal.Color(236));
    ExpectRefused(Short(944, 943));
    ExpectRefused(Short(943, 944));
    ExpectRefused(Short(0, 944));
}

TEST_F(PaletteFile, ARawPaletteIs768BytesOfSixBitsWithGreenFirst)
{
    std::string bytes = Ramp(768);
    for (char &ch : bytes)
        ch = static_cast<char>(ch & 63);
    const Palette pal = Read(Write("raw.pal", bytes));
    ASSERT_EQ(1u, pal.bRead);
    ASSERT_EQ(256, pal.nColors);
    for (i32 i = 0; i < 256; i++) {
        const size_t k = static_cast<size_t>(i) * 254 / 256;
        ASSERT_EQ(bytes[6 + 3 * k] * 4, pal.abRed[i]) << i;
        ASSERT_EQ(bytes[4 + 3 * k] * 4, pal.abGreen[i]) << i;
        ASSERT_EQ(bytes[5 + 3 * k] * 4, pal.abBlue[i]) << i;
    }
    EXPECT_EQ((763 * 7 & 63) * 4, pal.abGreen[255]) << "entry 255 comes from record 253";
    EXPECT_EQ(1u, ReadBytes(std::string(768, '\xFF')).bRead);
    EXPECT_EQ(0xFCFCFCu, ReadBytes(std::string(768, '\xFF')).Color(9)) << "eight bits are kept";
    for (const size_t cb : {0u, 3u, 4u, 7u, 767u, 769u, 6153u})
        ExpectRefused(Ramp(cb));
    EXPECT_EQ(0u, Read(Write("long.pal", Ramp(100000))).bRead);
}

TEST_F(PaletteFile, WhatIsNoFileIsRefusedAtOnce)
{
    const std::u16string path = Write("gone.pal", Full(2, 6));
    std::filesystem::remove(folder / "gone.pal");
    EXPECT_EQ(0u, Read(path).bRead);
    EXPECT_EQ(0, Read(path).nColors);
    EXPECT_EQ(0u, Read(FromUtf8(folder.string())).bRead);
    EXPECT_EQ(0u, Read(u"").bRead);
    ASSERT_EQ(0, mkfifo((folder / "pipe.pal").c_str(), 0600));
    EXPECT_EQ(0u, Read(FromUtf8((folder / "pipe.pal").string())).bRead) << "and nobody waits for a writer";
}

TEST_F(PaletteFile, ResamplingFollowsTheCurvesAndKeepsTheEnds)
{
    std::mt19937 random(5);
    for (const size_t n : {1u, 2u, 3u, 4u, 17u, 236u, 256u, 1000u, 2047u, 2048u}) {
        std::vector<u8> a(n);
        for (u8 &b : a)
            b = static_cast<u8>(random());
        std::vector<u8> resampled = a;
        resampled.resize(PALETTE_COLORS_MAX);
        ASSERT_EQ(1u, InterpolatePalette(resampled.data(), static_cast<i32>(n)));
        for (int i = 0; i < PALETTE_COLORS_MAX; i++)
            ASSERT_NEAR(std::floor(Resampled(a, i) * 255 + 1e-3), resampled[static_cast<size_t>(i)], 1)
                << n << " " << i;
        EXPECT_EQ(a.front(), resampled.front());
        EXPECT_NEAR(a.back(), resampled.back(), 1);
    }
    u8 ab[PALETTE_COLORS_MAX] = {10, 210};
    ASSERT_EQ(1u, InterpolatePalette(ab, 2));
    EXPECT_EQ(110, ab[1024]) << "two colours go straight all along";
    u8 abKept[PALETTE_COLORS_MAX] = {1, 2, 3};
    for (const i32 n : {0, -1, 2049})
        EXPECT_EQ(0u, InterpolatePalette(abKept, n));
    EXPECT_EQ(3, abKept[2]);
}

TEST_F(PaletteFile, ThePalettesThatShipAreLoopsFromBlackInAllFormats)
{
    std::set<std::string> headers;
    const std::vector<std::u16string> aPath = ListFiles(FromUtf8(SOURCE_FOLDER) + u"/data/Palettes/*.*");
    EXPECT_EQ(60u, aPath.size());
    for (const std::u16string &path : aPath) {
        SCOPED_TRACE(ToUtf8(path));
        const Palette pal = Read(path);
        ASSERT_TRUE(pal.bRead && pal.nColors > 0);
        EXPECT_EQ(0u, pal.Color(0));
        EXPECT_LT(std::max({pal.abRed[pal.nColors - 1], pal.abGreen[pal.nColors - 1], pal.abBlue[pal.nColors - 1]}),
                  90);
        EXPECT_GT(*std::max_element(pal.abGreen, pal.abGreen + pal.nColors), 180);
        std::ifstream file(std::filesystem::path(path), std::ios::binary);
        char ach[4] = {};
        file.read(ach, 4);
        headers.emplace(ach, 4);
    }
    EXPECT_EQ(3u, headers.size());
}
