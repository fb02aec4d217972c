// Output_test.cpp -- tests NumberPattern.cpp, Stretch.cpp and Presenters.cpp
#include "output/Presenters.h"
#include "output/mixer/Stretch.h"
#include "output/pictures/NumberPattern.h"

#include "platform/Bitmap.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"
#include "tests/InstructionSets.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

// What the C library makes of the same field.
std::string Formatted(const char *pszField, u32 n)
{
    char sz[64];
    std::snprintf(sz, sizeof sz, pszField, n);
    return sz;
}

TEST(NumberPattern, HonoursOneIntegerFieldTheWayTheCLibraryDoes)
{
    for (const char *pszField :
         {"%d", "%i", "%u", "%04d", "%4d", "%-4d", "%+d", "% d", "%+05d", "%-05d", "%12u", "%00d"})
        for (u32 n : {0u, 7u, 12345u, 2147483647u}) {
            NumberPattern np;
            const std::u16string text = u"a" + FromUtf8(pszField) + u"z.png";
            ASSERT_EQ(nullptr, ParseNumberPattern(text, &np)) << pszField;
            EXPECT_EQ("a" + Formatted(pszField, n) + "z.png", ToUtf8(FormatNumberPattern(np, n))) << pszField;
        }
}

TEST(NumberPattern, RefusesEverythingElseAndKeepsPercentSigns)
{
    NumberPattern np;
    for (const char16_t *pszText : {u"%s.png", u"%n.png", u"%x.png", u"%ld.png", u"%.3d.png", u"%*d.png", u"%1$d.png",
                                    u"%d-%d.png", u"%", u"100% off.png", u"%04"})
        EXPECT_NE(nullptr, ParseNumberPattern(pszText, &np)) << ToUtf8(pszText);
    ASSERT_EQ(nullptr, ParseNumberPattern(u"50%%-%d%%.png", &np));
    EXPECT_EQ(u"50%-3%.png", FormatNumberPattern(np, 3));
    ASSERT_EQ(nullptr, ParseNumberPattern(u"still.png", &np));
    EXPECT_EQ(0u, np.bHasNumber);
    EXPECT_EQ(u"still.png", FormatNumberPattern(np, 3));
    ASSERT_EQ(nullptr, ParseNumberPattern(u"%999999999999d", &np)) << "a width is limited, not overflowed";
    EXPECT_LE(FormatNumberPattern(np, 1).size(), 1000u);
}

class StretchOfEverySet : public InstructionSet {};
FOR_EVERY_INSTRUCTION_SET(StretchOfEverySet);

// Stretches into rows with gaps that begin anywhere, and looks at every pixel.
void ExpectStretched(const HostBitmap *hbm, i32 nWidth, i32 nHeight, bool bFlip)
{
    const u64 cbRow = static_cast<u64>(nWidth) * 4 + 12;
    std::vector<u32> bits((cbRow * static_cast<u64>(nHeight)) / 4 + 1, 0xEEEEEEEEu);
    StretchPicture({bits.data() + 1, nWidth, nHeight, cbRow}, hbm, bFlip);
    for (i32 y = 0; y < nHeight; y++) {
        const u32 *pRow = bits.data() + 1 + static_cast<u64>(y) * cbRow / 4;
        const i32 ySource = static_cast<i32>(static_cast<i64>(y) * hbm->nHeight / nHeight);
        const u32 *pFrom = BitmapPixels(hbm) + (bFlip ? hbm->nHeight - 1 - ySource : ySource) * hbm->nWidth;
        for (i32 x = 0; x < nWidth; x++)
            ASSERT_EQ(pFrom[static_cast<i64>(x) * hbm->nWidth / nWidth], pRow[x]) << x << ", " << y;
        if (y < nHeight - 1) {
            ASSERT_EQ(0xEEEEEEEEu, pRow[nWidth]) << "the gap between rows is not ours";
        }
    }
}

// The last one is so large that it is written past the caches.
TEST_P(StretchOfEverySet, TakesTheNearestPixelBeforeAtAnySizeAndTurnsThePicture)
{
    HostBitmap *hbm = CreateBitmap(37, 23);
    for (u32 i = 0; i < 37 * 23; i++)
        BitmapPixels(hbm)[i] = i * 2654435761u;
    for (const auto &[nWidth, nHeight] : std::vector<std::pair<i32, i32>>{
             {37, 23}, {1, 1}, {36, 24}, {38, 5}, {111, 46}, {500, 7}, {37, 60}, {2503, 2101}})
        for (bool bFlip : {false, true}) {
            SCOPED_TRACE(testing::Message() << nWidth << " x " << nHeight);
            ASSERT_NO_FATAL_FAILURE(ExpectStretched(hbm, nWidth, nHeight, bFlip));
        }
    DeleteBitmap(hbm);
}

TEST(Presenters, EveryFrameGoesToAllOfThemInOrderAndCountsAsShownOnce)
{
    static std::string sSeen;
    sSeen.clear();
    const PresenterFn pfn = [](const HostBitmap *, void *pv) {
        sSeen += static_cast<const char *>(pv);
        return sSeen.back() == 'b' ? 1u : 0u;
    };
    char szA[] = "a", szB[] = "b";
    HostBitmap hbm = {};
    GlobalSettings.dwFramesShown = 5;
    AddPresenter(pfn, szA);
    AddPresenter(pfn, szB);
    PresentFrame(&hbm);
    RemovePresenter(pfn, szA);
    PresentFrame(&hbm);
    PresentFrame(nullptr);
    EXPECT_EQ("abb", sSeen);
    EXPECT_EQ(7u, GlobalSettings.dwFramesShown);
    RemovePresenter(pfn, szB);
}

TEST(Presenters, OneThatRemovesItselfDoesNotMakeTheNextMissItsFrame)
{
    static u32 nFirst, nRest;
    nFirst = nRest = 0;
    static PresenterFn pfnOnce = [](const HostBitmap *, void *pv) {
        RemovePresenter(pfnOnce, pv);
        nFirst++;
        return 0u;
    };
    const PresenterFn pfn = [](const HostBitmap *, void *) {
        nRest++;
        return 0u;
    };
    constexpr u32 COUNT = 20;
    char acContext[COUNT];
    AddPresenter(pfnOnce, nullptr);
    for (char &c : acContext)
        AddPresenter(pfn, &c);
    HostBitmap hbm = {};
    PresentFrame(&hbm);
    PresentFrame(&hbm);
    EXPECT_EQ(1u, nFirst);
    EXPECT_EQ(2 * COUNT, nRest);
    for (char &c : acContext)
        RemovePresenter(pfn, &c);
}

} // namespace
