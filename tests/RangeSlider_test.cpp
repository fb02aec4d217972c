// RangeSlider_test.cpp -- the slider's geometry, mouse, wheel, keys and pixels
#include "toolkit/RangeSlider.h"

#include "toolkit/Meters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr i32 W = 200, H = 24;
constexpr f32 INF = std::numeric_limits<f32>::infinity();

SliderInfo Range(f32 fLow, f32 fHigh)
{
    return {.fMinimum = 0,
            .fMaximum = 100,
            .fValue = 50,
            .fRangeLow = fLow,
            .fRangeHigh = fHigh,
            .bRangeMode = 1,
            .bShowValue = 0,
            .bFloat = 1,
            .bDragging = 0,
            .nDragThumb = 0};
}

SliderInfo Value(f32 fMin, f32 fMax, f32 fValue, u32 bFloat)
{
    SliderInfo info = {};
    info.fMinimum = fMin;
    info.fMaximum = fMax;
    info.fValue = fValue;
    info.bFloat = bFloat;
    return info;
}

TEST(RangeSlider, AThumbStandsSixPixelsAroundItsTruncatedPlace)
{
    const SliderInfo info = Value(0, 3, 1, 1);
    const SliderBox box = SliderThumbBox(info, THUMB_VALUE, W, H, 100);
    EXPECT_EQ(60, box.x); // trunc(66.67) - 6
    EXPECT_EQ(12, box.nWidth);
    EXPECT_EQ(H, box.nHeight);
    EXPECT_EQ(24, SliderThumbBox(info, THUMB_VALUE, W, H, 200).nWidth);
    EXPECT_EQ(SliderPosition(Value(10, 0, 7.5f, 1), 7.5f, W), 50) << "a scale that runs from right to left";
}

TEST(RangeSlider, WhereBothThumbsLieTheUpperBoundIsTaken)
{
    const SliderInfo info = Range(50, 50);
    EXPECT_EQ(THUMB_LOW, HitSlider(info, 100, 0, W, H, 100));
    EXPECT_EQ(THUMB_LOW, HitSlider(info, 94, 7, W, H, 100));
    EXPECT_EQ(THUMB_HIGH, HitSlider(info, 100, 8, W, H, 100));
    EXPECT_EQ(THUMB_HIGH, HitSlider(info, 105, 23, W, H, 100));
    EXPECT_EQ(THUMB_NONE, HitSlider(info, 106, 12, W, H, 100));
    EXPECT_EQ(THUMB_NONE, HitSlider(info, 93, 12, W, H, 100));
}

TEST(RangeSlider, ADragEndsAtTheEndsOfTheScaleAndAMissChangesNothing)
{
    SliderInfo info = Range(20, 80);
    SliderGrip grip;
    EXPECT_FALSE(BeginSliderDrag(&info, &grip, 100, 12, W, H, 100));
    EXPECT_FALSE(DragSlider(&info, &grip, 150, W, 0));
    EXPECT_TRUE(BeginSliderDrag(&info, &grip, 40, 2, W, H, 100));
    EXPECT_TRUE(DragSlider(&info, &grip, 190, W, 0));
    EXPECT_FLOAT_EQ(95, info.fRangeLow) << "the lower bound may stand above the upper one";
    DragSlider(&info, &grip, 5000, W, 0);
    EXPECT_EQ(100, info.fRangeLow);
    DragSlider(&info, &grip, -3, W, 0);
    EXPECT_EQ(0, info.fRangeLow);
    EXPECT_EQ(80, info.fRangeHigh);
    EndSliderDrag(&info);
    EXPECT_FALSE(DragSlider(&info, &grip, 100, W, 0));
}

TEST(RangeSlider, TheFineMannerMovesATenthFromWhereItBegan)
{
    SliderInfo info = Value(0, 100, 50, 1);
    SliderGrip grip;
    ASSERT_TRUE(BeginSliderDrag(&info, &grip, 103, 5, W, H, 100));
    DragSlider(&info, &grip, 120, W, 0);
    EXPECT_FLOAT_EQ(60, info.fValue);
    DragSlider(&info, &grip, 120, W, 1);
    EXPECT_FLOAT_EQ(60, info.fValue) << "no jump when the manner changes";
    DragSlider(&info, &grip, 140, W, 1);
    EXPECT_FLOAT_EQ(61, info.fValue);
    DragSlider(&info, &grip, 140, W, 0);
    EXPECT_FLOAT_EQ(70, info.fValue);
}

TEST(RangeSlider, TheWheelMovesWholeNumbersByOneAndFractionsByATenThousandth)
{
    SliderInfo whole = Value(0, 100, 50, 0);
    EXPECT_TRUE(TurnSlider(&whole, 1, 0, H));
    EXPECT_EQ(51, whole.fValue);
    SliderInfo fraction = Value(0, 1, 0.5f, 1);
    TurnSlider(&fraction, -1, 0, H);
    EXPECT_FLOAT_EQ(0.4999f, fraction.fValue);
    EXPECT_FALSE(TurnSlider(&fraction, 0, 0, H));
    SliderInfo range = Range(20, 80);
    TurnSlider(&range, 1, 12, H);
    EXPECT_FLOAT_EQ(80.01f, range.fRangeHigh);
    TurnSlider(&range, -1, 11, H);
    EXPECT_FLOAT_EQ(19.99f, range.fRangeLow);
    whole.fValue = 100;
    TurnSlider(&whole, 1, 0, H);
    EXPECT_EQ(100, whole.fValue);
    StepSlider(&whole, THUMB_VALUE, -10);
    EXPECT_EQ(90, whole.fValue);
    EXPECT_FALSE(StepSlider(&whole, THUMB_NONE, 1));
}

TEST(RangeSlider, AScaleWithoutLengthOrWithoutNumbersIsLeftAlone)
{
    std::vector<u32> pixels(W * H);
    for (SliderInfo info : {Value(5, 5, 5, 1), Value(NAN, 1, 0, 1), Value(-INF, INF, 0, 1), Value(0, INF, 3, 0)}) {
        for (const u32 bRange : {0u, 1u}) {
            info.bRangeMode = bRange;
            info.bShowValue = 1;
            const f32 fBefore = info.fValue;
            SliderGrip grip;
            EXPECT_EQ(0, SliderPosition(info, info.fValue, W));
            BeginSliderDrag(&info, &grip, 0, 20, W, H, 100);
            EXPECT_FALSE(DragSlider(&info, &grip, 100, W, 0));
            EXPECT_FALSE(TurnSlider(&info, 1, 0, H));
            EXPECT_EQ(fBefore, info.fValue);
            PaintSlider(info, pixels, W, H, 150);
        }
    }
    SliderInfo lost = Value(0, 1, NAN, 1);
    EXPECT_EQ(0, SliderPosition(lost, lost.fValue, W));
    PaintSlider(lost, pixels, W, H, 100);
    StepSlider(&lost, THUMB_VALUE, 1);
    EXPECT_EQ(0, lost.fValue);
    PaintSlider(Range(-1e30f, 1e30f), pixels, W, H, 100);
    PaintSlider(Range(0, 100), pixels, 1, 1, 200);
}

// Painted the slow way, pixel by pixel.
u32 Expected(const SliderInfo &info, i32 x, i32 y)
{
    const auto in = [&](u32 dwThumb, i32 nLess) {
        const SliderBox b = SliderThumbBox(info, dwThumb, W, H, 100);
        return x >= b.x + nLess && x < b.x + b.nWidth - nLess && y >= b.y + nLess && y < b.y + b.nHeight - nLess;
    };
    struct Layer {
        u32 dwThumb, dwColor;
        bool bThere;
    };
    for (const Layer &layer : {Layer{THUMB_HIGH, SliderColors.crHighThumb, info.bRangeMode != 0},
                               Layer{THUMB_LOW, SliderColors.crLowThumb, info.bRangeMode != 0},
                               Layer{THUMB_VALUE, SliderColors.crValueThumb, !info.bRangeMode || info.bShowValue}})
        if (layer.bThere && in(layer.dwThumb, 0))
            return PixelOfColor(in(layer.dwThumb, 1) ? layer.dwColor : SliderColors.crOutline);
    if (info.bRangeMode && x >= 2 && x < W - 2 && y >= 2 && y < H - 2) {
        const i32 a = static_cast<i32>(info.fRangeLow / 100 * (W - 4)),
                  b = static_cast<i32>(info.fRangeHigh / 100 * (W - 4));
        const i32 n = std::abs(a - b) + 2, k = x - 2 - std::min(a, b);
        const bool bSwapped = info.fRangeLow > info.fRangeHigh;
        const u32 low = ScaleColor(SliderColors.crLowThumb, 0.7f), high = ScaleColor(SliderColors.crHighThumb, 0.7f);
        if (k >= 0 && k < n)
            return PixelOfColor(LerpColor(bSwapped ? high : low, bSwapped ? low : high, k, n));
    }
    const bool bEdge = x == 0 || y == 0 || x == W - 1 || y == H - 1;
    return PixelOfColor(bEdge ? SliderColors.crOutline : SliderColors.crBackground);
}

TEST(RangeSlider, ThePictureIsThatOfASlowerPainter)
{
    SliderInfo shown = Range(10, 60);
    shown.bShowValue = 1;
    for (const SliderInfo &info :
         {Range(20, 80), Range(90, 30), Range(0, 100), Range(50, 50), shown, Value(0, 9, 4, 0)}) {
        std::vector<u32> pixels(W * H, 0x12345678);
        PaintSlider(info, pixels, W, H, 100);
        for (i32 y = 0; y < H; y++)
            for (i32 x = 0; x < W; x++)
                ASSERT_EQ(Expected(info, x, y), pixels[static_cast<size_t>(y * W + x)]) << x << " " << y;
    }
}

} // namespace
