// PresetBeauty_test.cpp -- what can be told in numbers about the look of the stock presets, one test a mood
//
// Nobody leaves a picture on for hours that is black, white, still, or that hurts. Whether it is beautiful stands on
// the contact sheet.
#include "tests/StockPresetsFixture.h"

#include <array>
#include <cmath>
#include <deque>
#include <set>
#include <utility>

namespace {

constexpr i32 nWidth = 96, nHeight = 72;
constexpr i32 nBlock = 12; // pixels a side of the blocks whose brightness is followed
constexpr i32 nBlocks = (nWidth / nBlock) * (nHeight / nBlock);
constexpr i32 nFramesPerSecond = 30;

// The text before " - " in the names of the presets.
std::vector<std::string> Moods()
{
    std::set<std::string> moods;
    for (const auto &entry : std::filesystem::directory_iterator(SOURCE_FOLDER "/data/Presets"))
        if (entry.path().extension() == ".VD")
            moods.insert(entry.path().stem().string().substr(0, entry.path().stem().string().find(" - ")));
    return {moods.begin(), moods.end()};
}

class PresetBeauty : public StockPresets, public testing::WithParamInterface<std::string> {
  protected:
    void SetUp() override
    {
        StockPresets::SetUp();
        GlobalSettings.nBufferWidth = GlobalSettings.hwndVisuals.nWidth = nWidth;
        GlobalSettings.nBufferHeight = GlobalSettings.hwndVisuals.nHeight = nHeight;
        const std::u16string start = u"/" + FromUtf8(GetParam()) + u" - ";
        std::erase_if(paths, [&](const std::u16string &path) { return !ContainsNoCase(path, start); });
    }

    void ExpectLife(const char *pszWhen)
    {
        SCOPED_TRACE(pszWhen);
        const std::vector<u32> before = Picture();
        Run(nFramesPerSecond);
        const std::vector<u32> after = Picture();
        const std::vector<u32> white(after.size(), 0xFFFFFF), first(after.size(), after[0]);
        EXPECT_LT(0.01, ShareThatDiffers(after, {}, 24)) << "black";
        EXPECT_LT(0.1, ShareThatDiffers(after, white, 24)) << "white";
        EXPECT_LT(0.02, ShareThatDiffers(after, first, 24)) << "one color";
        EXPECT_LT(0.005, ShareThatDiffers(before, after, 8)) << "still";
    }
    void ExpectGoodFilm(const char *pszWhen);
};

// Mean brightness of every block, 0 to 1 (luma of BT.709, on the values as they are shown).
std::array<f64, nBlocks> BlockBrightness(const std::vector<u32> &picture)
{
    std::array<f64, nBlocks> af = {};
    for (i32 y = 0; y < nHeight; y++)
        for (i32 x = 0; x < nWidth; x++) {
            const u32 n = picture[static_cast<size_t>(y * nWidth + x)];
            af[static_cast<size_t>(y / nBlock * (nWidth / nBlock) + x / nBlock)] +=
                0.0722 * Channel(n, 0) + 0.7152 * Channel(n, 8) + 0.2126 * Channel(n, 16);
        }
    for (f64 &f : af)
        f /= 255.0 * nBlock * nBlock;
    return af;
}

// Follows one block: a swing is a change of brightness by a tenth or more, against the direction of the last one. Two
// of them, there and back, are a flash.
struct SwingCounter {
    f64 fExtreme = -1; // the brightest or darkest value since the last swing
    int nDirection = 0;
    std::deque<i32> frames; // of the swings in the last second

    void Follow(f64 f, i32 iFrame)
    {
        while (!frames.empty() && frames.front() <= iFrame - nFramesPerSecond)
            frames.pop_front();
        const bool bFirst = fExtreme < 0;
        if (bFirst || (nDirection >= 0 && f > fExtreme) || (nDirection < 0 && f < fExtreme))
            fExtreme = f;
        const f64 fChange = f - fExtreme;
        if (std::abs(fChange) < 0.1)
            return;
        nDirection = fChange > 0 ? 1 : -1;
        fExtreme = f;
        frames.push_back(iFrame);
    }
    bool FlashesTooOften() const
    {
        return frames.size() > 2 * 3;
    }
};

// Share of the pixels that are burnt out to white.
f64 ShareOfWhite(const std::vector<u32> &picture)
{
    const auto IsWhite = [](u32 n) { return std::min({Channel(n, 0), Channel(n, 8), Channel(n, 16)}) > 232; };
    return static_cast<f64>(std::count_if(picture.begin(), picture.end(), IsWhite)) / (nWidth * nHeight);
}

// Share of the most common color at 16 steps a channel. Black is a look and does not count.
f64 ShareOfOneColor(const std::vector<u32> &picture)
{
    std::array<i32, 4096> anPixels = {};
    for (const u32 n : picture)
        anPixels[static_cast<size_t>((n >> 4 & 0xF) | (n >> 8 & 0xF0) | (n >> 12 & 0xF00))]++;
    return static_cast<f64>(*std::max_element(anPixels.begin() + 1, anPixels.end())) / (nWidth * nHeight);
}

// Mean difference of a channel, 0 to 255, between pixels that are a fortieth of the height apart.
f64 LocalContrast(const std::vector<u32> &picture)
{
    constexpr i32 nApart = nHeight / 40 + 1;
    i64 nSum = 0;
    for (i32 y = 0; y < nHeight - nApart; y++)
        for (i32 x = 0; x < nWidth - nApart; x++) {
            const u32 *pn = &picture[static_cast<size_t>(y * nWidth + x)];
            for (u32 nShift = 0; nShift < 24; nShift += 8)
                for (i32 nOther : {nApart, nApart * nWidth})
                    nSum += std::abs(Channel(pn[0], nShift) - Channel(pn[nOther], nShift));
        }
    return static_cast<f64>(nSum) / (2 * 3 * (nWidth - nApart) * (nHeight - nApart));
}

// Watches a film: every frame for flashes, a few for their look.
struct Watcher {
    std::array<SwingCounter, nBlocks> asBlock;
    i64 nMostFlashing = 0; // blocks that flashed too often at once
    f64 fWhite = 0, fOneColor = 0, fContrast = 0;
    i32 nLooks = 0;

    void Follow(const std::vector<u32> &picture, i32 iFrame)
    {
        const auto afBrightness = BlockBrightness(picture);
        for (size_t i = 0; i < nBlocks; i++)
            asBlock[i].Follow(afBrightness[i], iFrame);
        nMostFlashing =
            std::max<i64>(nMostFlashing, std::count_if(asBlock.begin(), asBlock.end(),
                                                       [](const auto &block) { return block.FlashesTooOften(); }));
        if (iFrame % 10 == 0)
            LookAt(picture);
    }
    void LookAt(const std::vector<u32> &picture)
    {
        fWhite += ShareOfWhite(picture);
        fOneColor += ShareOfOneColor(picture);
        fContrast += LocalContrast(picture);
        nLooks++;
    }
    // Between the films that were judged good and those that were thrown out: the flattest good one has a contrast of
    // 4.7, and none but the bright ones is white on more than 0.05 of the picture.
    void ExpectGoodFilm(f64 fMostWhite) const
    {
        EXPECT_GT(nBlocks / 4, nMostFlashing)
            << "flashes more than three times a second in so many of " << nBlocks << " blocks at once";
        EXPECT_GT(fMostWhite, fWhite / nLooks) << "burnt out";
        EXPECT_GT(0.5, fOneColor / nLooks) << "hardly more than one color";
        EXPECT_LT(4.2, fContrast / nLooks) << "nearly flat";
    }
};

// Two beats a second that fade, and a bar of silence after every three.
u32 GetBeat(void *, i32, f32 *pfLevel)
{
    const u32 nTick = static_cast<u32>(TickCount());
    *pfLevel = nTick / 2000 % 4 == 3 ? 0.0f : std::exp(static_cast<f32>(nTick % 500) / -120.0f);
    return 1;
}

void PresetBeauty::ExpectGoodFilm(const char *pszWhen)
{
    SCOPED_TRACE(pszWhen);
    Watcher watcher;
    for (i32 iFrame = 0; iFrame < 10 * nFramesPerSecond; iFrame++) {
        Run(1);
        watcher.Follow(Picture(), iFrame);
    }
    watcher.ExpectGoodFilm(GetParam() == "Bright" ? 0.45 : 0.1);
}

TEST_P(PresetBeauty, MovesWithoutFlashingAndIsAliveAfterTenMinutes)
{
    for (const std::u16string &path : paths) {
        SCOPED_TRACE(ToUtf8(path));
        SeedAllRandom(3); // whatever other presets there are
        Load(path);
        Run(15);
        ExpectLife("at once");
        ExpectGoodFilm("with the simulated level");
        const auto pfnGetLevel = std::exchange(GlobalSettings.Monitor.pfnGetLevel, GetBeat);
        ExpectGoodFilm("with beats");
        GlobalSettings.Monitor.pfnGetLevel = pfnGetLevel;
        Run(10 * 60 * 4, 250);
        ExpectLife("after ten minutes");
    }
}

std::string NameOfMood(const testing::TestParamInfo<std::string> &mood)
{
    std::string name = mood.param;
    std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
    return name;
}

INSTANTIATE_TEST_SUITE_P(Stock, PresetBeauty, testing::ValuesIn(Moods()), NameOfMood);

} // namespace
