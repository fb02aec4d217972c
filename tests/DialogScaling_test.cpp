// DialogScaling_test.cpp -- places, fonts and edges of dialogs that are stretched
#include "toolkit/DialogScaling.h"

#include <gtest/gtest.h>

namespace {

constexpr WindowRect DESIGN = {0, 0, 405, 205};
constexpr ScaledFont FONT = {-11, 5, 700};

bool Same(const WindowRect &a, const WindowRect &b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

TEST(DialogScaling, ControlsGrowWithTheDialogByTheEdges)
{
    const ScaleFactors twice = GetDialogScale({0, 0, 810, 410}, DESIGN);
    EXPECT_TRUE(Same(PlaceControl({10, 20, 35, 40}, twice, 0), {20, 40, 70, 80}));
    EXPECT_TRUE(Same(PlaceControl({10, 20, 35, 40}, twice, 1), {20, 40, 70, 130})) << "room for the list";
    const ScaleFactors half = {0.5f, 1.5f};
    EXPECT_TRUE(Same(PlaceControl({5, 5, 10, 15}, half, 0), {3, 8, 5, 23})) << "halves go away from zero";
    EXPECT_TRUE(Same(PlaceControl({-5, -5, 0, 0}, half, 0), {-3, -8, 0, 0}));
    EXPECT_TRUE(Same(DialogDesignRect({0, 0, 400, 200}), DESIGN));
}

TEST(DialogScaling, AControlThatComesWhileStretchedLandsWhereItIs)
{
    for (const ScaleFactors &factors : {ScaleFactors{2, 3}, ScaleFactors{1.25f, 1.75f}, ScaleFactors{3.5f, 1}})
        for (i32 n = 0; n < 500; n += 7) {
            const WindowRect rcNow = {n, 2 * n, n + 130, 2 * n + 44};
            const WindowRect rc = PlaceControl(BringToDesign(rcNow, factors), factors, 0);
            EXPECT_LE(std::abs(rc.left - rcNow.left), 2) << n;
            EXPECT_LE(std::abs(rc.bottom - rcNow.bottom), 2) << n;
        }
}

TEST(DialogScaling, WithoutADesignSizeNothingIsScaled)
{
    for (const WindowRect &rcNow : {WindowRect{0, 0, 100, 50}, WindowRect{0, 0, 0, 0}, WindowRect{5, 5, -5, -5}}) {
        const ScaleFactors factors = GetDialogScale(rcNow, {});
        EXPECT_EQ(1, factors.fScaleX);
        EXPECT_EQ(1, factors.fScaleY);
    }
    EXPECT_EQ(1, GetDialogScale({0, 0, 0, 100}, DESIGN).fScaleX) << "a window that is not there yet";
}

TEST(DialogScaling, TheFontFollowsTheHeightAndIsSqueezedButNeverWidened)
{
    const ScaledFont twice = ScaleFont(FONT, {2, 2}, 205);
    EXPECT_EQ(-22, twice.lfHeight);
    EXPECT_EQ(10, twice.lfWidth);
    EXPECT_EQ(0, twice.lfWeight);
    EXPECT_EQ(0, ScaleFont(FONT, {2, 1}, 205).lfWidth) << "wider: its own proportions";
    EXPECT_EQ(5, ScaleFont(FONT, {1, 2}, 205).lfWidth) << "higher: narrow letters";
    EXPECT_EQ(-16, ScaleFont(FONT, {1, 1.5f}, 205).lfHeight) << "truncated";
    EXPECT_EQ(10, ScaleFont({-22, 0, 0}, {1, 1}, 205).lfWidth) << "without a width: from the height";
    EXPECT_EQ(5, DesignFontWidth(-11));
}

TEST(DialogScaling, TheStretchIsWhatIsLeftOfTheDesignFontsProportions)
{
    for (i32 nHeight = 8; nHeight < 40; nHeight++) {
        const ScaledFont lfDesign = {-nHeight, DesignFontWidth(nHeight), 0};
        EXPECT_EQ(100, FontStretch(lfDesign, lfDesign)) << nHeight;
        EXPECT_EQ(100, FontStretch(ScaleFont(lfDesign, {2, 1}, 205), lfDesign)) << "no width of its own";
        EXPECT_EQ(50, FontStretch(ScaleFont(lfDesign, {1, 2}, 205), lfDesign)) << nHeight;
        EXPECT_LE(FontStretch(ScaleFont(lfDesign, {1.3f, 1.3f}, 205), lfDesign), 100) << "never wider";
    }
    EXPECT_EQ(100, FontStretch({-11, 5, 0}, {}));
}

TEST(DialogScaling, AControlLeavesTheBandFreeAndOneInsideStaysWhereItIs)
{
    EXPECT_TRUE(Same(LeaveBandFree({5, 0, 115, 75}, 120, 80), {5, 0, 115, 75}));
    EXPECT_TRUE(Same(LeaveBandFree({2, -3, 118, 79}, 120, 80), {5, -3, 115, 75}));
    const WindowRect rc = LeaveBandFree({0, 0, 9, 9}, 4, 4); // no room at all
    EXPECT_TRUE(rc.left <= rc.right && rc.top <= rc.bottom);
}

TEST(DialogScaling, AFontTallerThanItsWindowGetsFourFifthsOfIt)
{
    const ScaledFont lf = ScaleFont({-30, 14, 0}, {1, 1}, 20);
    EXPECT_EQ(16, lf.lfHeight);
    EXPECT_EQ(7, lf.lfWidth); // 14 x 20 / 30 x 0.8
    EXPECT_EQ(0, ScaleFont({0, 0, 0}, {1, 1}, 0).lfHeight);
}

TEST(DialogScaling, TheTallestFontThatFitsIsFoundAndNoneBelowTheDesigns)
{
    for (i32 nLimit = 0; nLimit < 40; nLimit++) {
        const auto fits = [](i32 nHeight, void *pv) { return nHeight <= *static_cast<i32 *>(pv); };
        EXPECT_EQ(std::clamp(nLimit, 11, 30), FitFontHeight(30, 11, fits, &nLimit)) << nLimit;
        EXPECT_EQ(8, FitFontHeight(8, 11, fits, &nLimit)) << "a dialog that was made smaller";
        EXPECT_EQ(1, FitFontHeight(0, 0, fits, &nLimit));
    }
}

// The rules in their order, over the client area with its band of five.
SizingEdge Expected(i32 x, i32 y, i32 nRight, i32 nBottom)
{
    if (x < 16 && y < 16)
        return SizingEdge::TopLeft;
    if (x < 16 && y >= nBottom - 15)
        return SizingEdge::BottomLeft;
    if (x >= nRight - 15 && y < 16)
        return SizingEdge::TopRight;
    if (x >= nRight - 15 && y >= nBottom - 15)
        return SizingEdge::BottomRight;
    if (x < 6)
        return SizingEdge::Left;
    if (x >= nRight - 5)
        return SizingEdge::Right;
    if (y <= 5)
        return SizingEdge::Top;
    return y < nBottom - 5 ? SizingEdge::None : SizingEdge::Bottom;
}

TEST(DialogScaling, TheBandIsTakenByItsCornersAndSides)
{
    for (i32 y = -8; y < 88; y++)
        for (i32 x = -8; x < 128; x++)
            ASSERT_EQ(Expected(x, y, 125, 85), HitSizingBand(x, y, 120, 80)) << x << " " << y;
}

} // namespace
