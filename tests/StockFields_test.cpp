// StockFields_test.cpp -- tests the full images of stock/: fields, journeys, and pictures from sound and damaged files
#include "PainterHost.h"

#include "output/pictures/PictureFiles.h"
#include "platform/Text.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const char *const aszFields[] = {"FDPlasma.dll", "FDNoise.dll", "FDJulia.dll", "FDMandelbrot.dll", "FDGradient.dll"};

// Mean difference of all channels.
double Difference(const std::vector<uint32_t> &a, const std::vector<uint32_t> &b)
{
    double fSum = 0;
    for (size_t i = 0; i < a.size(); i++)
        for (int nShift = 0; nShift < 24; nShift += 8)
            fSum += std::abs((int)(a[i] >> nShift & 255) - (int)(b[i] >> nShift & 255));
    return fSum / (double)(3 * a.size());
}

// A palette without sharp turns, so that what jumps is the picture.
void UseSoftPalette(TestPlane &plane)
{
    for (uint32_t i = 0; i < 256; i++)
        plane.adwTable[i] = (i < 128 ? i : 255 - i) * 0x010101u;
}

TEST(StockFields, MoveAllTheTimeAndGlideOverAReset)
{
    for (const char *szDll : aszFields) {
        TestPlane plane(160, 90, false, 256);
        UseSoftPalette(plane);
        TestModule module(szDll, plane);
        module.Run(plane, 60);
        std::vector<uint32_t> before = plane.Picture();
        double fUsual = 0, fReset = 0;
        for (int32_t i = 1; i <= 240; i++) {
            if (i % 60 == 0)
                module.Reset(plane, (uint64_t)i);
            module.Run(plane, 1);
            const std::vector<uint32_t> after = plane.Picture();
            (i % 60 == 0 ? fReset : fUsual) += Difference(before, after) / (i % 60 == 0 ? 4 : 236);
            before = after;
        }
        EXPECT_GT(fUsual, 0.01) << szDll;
        EXPECT_LT(fReset, 3 * fUsual + 0.5) << szDll;
        EXPECT_TRUE(plane.WallsStand()) << szDll;
    }
}

TEST(StockFields, KeepTheAlphaByteAndFillEveryPixel)
{
    for (const char *szDll : aszFields) {
        TestPlane plane(131, 77, false, 256);
        plane.Fill(0xAB123456);
        std::fill_n(plane.adwTable.begin(), 256, 0x00445566u);
        TestModule module(szDll, plane);
        module.Run(plane, 2);
        const std::vector<uint32_t> picture = plane.Picture();
        EXPECT_EQ(std::count(picture.begin(), picture.end(), 0xAB445566u), 131 * 77) << szDll;
    }
}

TEST(StockFields, JuliaSetsAreTheSameTurnedByHalf)
{
    const int32_t nWidth = 201, nHeight = 121; // every pixel is a vertex, and vertex 0 has its twin beyond the edge
    TestPlane plane(nWidth, nHeight, true, 256);
    TestModule julia("FDJulia.dll", plane);
    julia.Run(plane, 20);
    int32_t nDifferent = 0;
    for (int32_t y = 1; y < nHeight; y++)
        for (int32_t x = 1; x < nWidth; x++)
            nDifferent += plane.Bits()[y * nWidth + x] != plane.Bits()[(nHeight - y) * nWidth + nWidth - x];
    EXPECT_EQ(nDifferent, 0);
}

TEST(StockFields, GrainRunsFromSmoothToStaticOverTheWholePalette)
{
    double afRough[2] = {};
    for (int32_t i = 0; i < 2; i++) {
        TestPlane plane(320, 200, true, 256);
        TestModule noise("FDNoise.dll", plane);
        noise.Set("Grain.Strength", (float)i);
        noise.Set("Color.Spread", 1);
        noise.Run(plane, 60);
        int32_t anCount[8] = {};
        for (size_t k = 1; k < plane.Pixels(); k++) {
            const int32_t n = std::abs((int32_t)plane.Bits()[k] - (int32_t)plane.Bits()[k - 1]);
            afRough[i] += std::min(n, 256 - n);
            anCount[plane.Bits()[k] / 32]++;
        }
        if (i == 1) {
            EXPECT_GT(*std::min_element(anCount, anCount + 8), 64000 / 8 * 9 / 10);
        }
    }
    EXPECT_GT(afRough[1], 10 * afRough[0]);
}

// Shallow journeys at the highest speed, so that keyframes and places change often.
TEST(StockFields, TheJourneyGoesOnFromPlaceToPlaceWithoutACut)
{
    TestPlane plane(128, 72, false, 256);
    UseSoftPalette(plane);
    TestModule journey("FDMandelbrot.dll", plane);
    journey.Set("Journey.Speed", 60);
    journey.Set("Journey.Depth", 4);
    journey.Set("Journey.Fade", 3);
    journey.Set("Color.Spread", 0.1f);
    std::vector<uint32_t> before = plane.Picture(), oneSecondAgo = before;
    double fMost = 0, fSlowest = 1e9;
    for (int32_t i = 0; i < 60 * 30; i++) {
        journey.Run(plane, 1);
        const std::vector<uint32_t> after = plane.Picture();
        if (i > 0)
            fMost = std::max(fMost, Difference(before, after));
        before = after;
        if (i % 60 == 59) {
            fSlowest = std::min(fSlowest, Difference(oneSecondAgo, after));
            oneSecondAgo = after;
        }
    }
    EXPECT_LT(fMost, 12);
    EXPECT_GT(fSlowest, 0.5);
}

// ---- Pictures

// Quarters: bottom left red, bottom right green, top left blue, top right grey.
constexpr uint32_t adwQuarter[] = {0xFF0000, 0x00FF00, 0x0000FF, 0x808080};

uint32_t nMessages;

uint32_t CountMessage(const char16_t *pszText)
{
    nMessages += *pszText != 0;
    return 1;
}

class StockPictures : public testing::Test {
  protected:
    void SetUp() override
    {
        plane.context.bFixedClock = 1;
        plane.info.pfnShowMessage = CountMessage;
        nMessages = 0;
    }
    std::string Save(const char *szName)
    {
        std::vector<uint32_t> adw(64 * 48);
        for (uint32_t i = 0; i < adw.size(); i++)
            adw[i] = adwQuarter[(i % 64 >= 32 ? 1 : 0) + (i / 64 >= 24 ? 2 : 0)];
        const HostBitmap bitmap = {sizeof bitmap, 64, 48, 32, 64 * 4, adw.data()};
        const std::string path = (folder / szName).string();
        EXPECT_EQ(SavePicture(&bitmap, FromUtf8(path).c_str(), 95), 1u);
        return path;
    }
    std::string Write(const char *szName, const std::string &bytes)
    {
        return folder.Write(szName, bytes).string();
    }
    // Shows the file as it is, without motion.
    void Show(TestModule &picture, const std::string &path)
    {
        const std::u16string wide = FromUtf8(path);
        ControlRecord *pctl = picture.Find("Picture.Files");
        memcpy(pctl->FileSelect.szCurrentFile, wide.c_str(), (wide.size() + 1) * sizeof(char16_t));
        picture.Set("Picture.Fit", 2);
        picture.Set("Picture.Fade", 0);
        picture.Set("Motion.Zoom", 1);
        picture.Set("Motion.Pan", 0);
        picture.Set("Motion.Pulse", 0);
        picture.Reset(plane, 3);
        picture.Run(plane, 200);
    }
    uint32_t QuarterOf(int32_t i)
    {
        const int32_t x = i % 2 ? 96 : 32, y = i / 2 ? 72 : 24;
        return plane.Bits()[y * 128 + x];
    }
    bool ShowsQuarters(int32_t nTolerance)
    {
        for (int32_t i = 0; i < 4; i++)
            for (int nShift = 0; nShift < 24; nShift += 8)
                if (std::abs((int)(QuarterOf(i) >> nShift & 255) - (int)(adwQuarter[i] >> nShift & 255)) > nTolerance)
                    return false;
        return true;
    }

    TempFolder folder;
    TestPlane plane{128, 96, false, 256};
};

std::string Bytes(std::initializer_list<int> list)
{
    return {list.begin(), list.end()};
}

std::string LittleEndian(uint32_t dw)
{
    return Bytes({(int)(dw & 255), (int)(dw >> 8 & 255), (int)(dw >> 16 & 255), (int)(dw >> 24)});
}

// A BMP of the quarters, 2 x 2 pixels unless told, with these pixel bytes.
std::string Bmp(int32_t nHeight, uint32_t nBits, uint32_t dwCompression, const std::string &colors,
                const std::string &pixels)
{
    std::string file = "BM" + LittleEndian(0) + LittleEndian(0) + LittleEndian((uint32_t)(54 + colors.size()));
    file += LittleEndian(40) + LittleEndian(2) + LittleEndian((uint32_t)nHeight) + LittleEndian(1 | nBits << 16);
    file += LittleEndian(dwCompression) + LittleEndian(0) + LittleEndian(0) + LittleEndian(0);
    file += LittleEndian((uint32_t)colors.size() / 4) + LittleEndian(0);
    return file + colors + pixels;
}

TEST_F(StockPictures, ShowEveryFormatUprightInItsColours)
{
    const std::string colors =
        LittleEndian(0xFF0000) + LittleEndian(0xFF00) + LittleEndian(0xFF) + LittleEndian(0x808080);
    const std::string masks = LittleEndian(0xF800) + LittleEndian(0x07E0) + LittleEndian(0x001F);
    const std::pair<std::string, int32_t> aFile[] = {
        {Save("a.png"), 0},
        {Save("a.bmp"), 0},
        {Save("a.gif"), 0},
        {Save("a.jpg"), 12},
        {Write("4.bmp", Bmp(2, 4, 0, colors, Bytes({0x01, 0, 0, 0, 0x23, 0, 0, 0}))), 4},
        {Write("8.bmp", Bmp(-2, 8, 0, colors, Bytes({2, 3, 0, 0, 0, 1, 0, 0}))), 4},
        {Write("rle8.bmp", Bmp(2, 8, 1, colors, Bytes({1, 0, 1, 1, 0, 0, 1, 2, 1, 3, 0, 1}))), 4},
        {Write("rle4.bmp", Bmp(2, 4, 2, colors, Bytes({2, 0x01, 0, 0, 1, 0x20, 1, 0x30, 0, 1}))), 4},
        {Write("16.bmp", Bmp(-2, 16, 3, masks, Bytes({0x1F, 0, 0x10, 0x84, 0, 0xF8, 0xE0, 0x07}))), 8},
    };
    for (const auto &[path, nTolerance] : aFile) {
        TestModule picture("FDPicture.dll", plane);
        plane.Fill(0);
        Show(picture, path);
        EXPECT_TRUE(ShowsQuarters(nTolerance)) << path;
    }
    TestPlane indexed(128, 96, true, 256);
    TestModule picture("FDPicture.dll", indexed);
    plane.Fill(0);
    indexed.context.bFixedClock = 1;
    Show(picture, aFile[0].first);
    picture.Run(indexed, 2);
    // By brightness: green before grey before red before blue.
    const uint32_t *pdw = indexed.Bits();
    EXPECT_GT(pdw[24 * 128 + 96], pdw[72 * 128 + 96]);
    EXPECT_GT(pdw[72 * 128 + 96], pdw[24 * 128 + 32]);
    EXPECT_GT(pdw[24 * 128 + 32], pdw[72 * 128 + 32]);
}

TEST_F(StockPictures, DamagedFilesNeverHarmAndCutOnesShowNothing)
{
    std::mt19937 random(7);
    TestModule picture("FDPicture.dll", plane);
    for (const char *szName : {"a.png", "a.bmp", "a.gif", "a.jpg"}) {
        std::ifstream in(Save(szName), std::ios::binary);
        const std::string whole{std::istreambuf_iterator<char>(in), {}};
        for (int32_t i = 0; i < 150; i++) {
            std::string bytes = whole;
            if (i % 3 == 0)
                bytes.resize(random() % bytes.size());
            for (uint32_t n = random() % 4; n > 0 && !bytes.empty(); n--)
                bytes[random() % std::min<size_t>(bytes.size(), i % 2 ? 64 : 100000)] = (char)random();
            Write("damaged", bytes);
            picture.Find("Picture.Files")->FileSelect.szCurrentFile[0] = 0;
            picture.Reset(plane, 1);
            const std::u16string wide = (folder / "damaged").u16string();
            std::copy_n(wide.c_str(), wide.size() + 1, picture.Find("Picture.Files")->FileSelect.szCurrentFile);
            picture.Reset(plane, 1);
            picture.Run(plane, 1);
        }
        plane.Fill(0);
        if (std::string(szName) != "a.jpg") { // of a JPEG file everything up to the cut is shown
            Show(picture, Write("cut", whole.substr(0, whole.size() / 2)));
            EXPECT_EQ(plane.Picture(), std::vector<uint32_t>(plane.Pixels())) << szName;
        }
    }
    EXPECT_TRUE(plane.WallsStand());
}

TEST_F(StockPictures, FilesThatAreNoneHugeOrGoneShowNothingAndTheNextOneShows)
{
    ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
    const std::string huge = Bmp(0x7FFFFFFF, 32, 0, "", "");
    TestModule picture("FDPicture.dll", plane);
    for (const std::string &path :
         {(folder / "gone.png").string(), folder.string(), (folder / "pipe.png").string(), Write("huge.bmp", huge),
          Write("empty.png", ""), Write("text.gif", "GIF, they say")}) {
        plane.Fill(0);
        Show(picture, path);
        EXPECT_EQ(plane.Picture(), std::vector<uint32_t>(plane.Pixels())) << path;
    }
    EXPECT_EQ(nMessages, 6u);
    Show(picture, Save("good.png"));
    EXPECT_TRUE(ShowsQuarters(0));
    fs::remove(folder / "good.png"); // what is shown does not need its file any more
    picture.CleanUp();
    picture.BringUp(plane, 4);
    picture.Run(plane, 200);
    EXPECT_TRUE(ShowsQuarters(0));
}

TEST_F(StockPictures, LiveAThreadLoadsAndALeavingInstanceWaitsForIt)
{
    plane.context.bFixedClock = 0;
    const std::string path = Save("a.png");
    TestModule picture("FDPicture.dll", plane);
    for (int32_t i = 0; i < 20; i++) // requests that overtake each other
        Show(picture, i % 2 ? (folder / "gone.png").string() : path);
    Show(picture, path);
    for (int32_t i = 0; i < 2000 && !ShowsQuarters(0); i++) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        picture.Run(plane, 20);
    }
    EXPECT_TRUE(ShowsQuarters(0));
    for (int32_t i = 0; i < 5; i++) {
        TestModule leaving("FDPicture.dll", plane);
        Show(leaving, path);
    }
}

} // namespace
