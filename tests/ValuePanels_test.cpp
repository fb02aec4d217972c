// ValuePanels_test.cpp -- tests ValueTexts.cpp, ValueLists.cpp and NumberPanel.cpp: what the value panels read and
// write
#include "controls/ControlManager.h"
#include "controls/panels/NumberPanel.h"
#include "controls/panels/ValueLists.h"
#include "controls/panels/ValueTexts.h"
#include "platform/Text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr f32 INF = std::numeric_limits<f32>::infinity();
constexpr f32 NOT_A_NUMBER = std::numeric_limits<f32>::quiet_NaN();
const EditPlace place = ControlPlace(ModulePlace(ListPlace(0, 0), 0), 0);

ControlRecord MakeInteger(const ControlInteger &value)
{
    ControlRecord control = {};
    SetControlDefaults(&control);
    control.Base.dwType = CONTROLTYPE_INTEGER;
    control.Integer = value;
    return control;
}

ControlRecord MakeFloat(const ControlFloat &value)
{
    ControlRecord control = {};
    SetControlDefaults(&control);
    control.Base.dwType = CONTROLTYPE_FLOAT;
    control.Float = value;
    return control;
}

// What is read; "-" where it is no number.
std::string Whole(std::u16string_view text)
{
    f64 f;
    return ParseWhole(text, &f) ? ToUtf8(WholeText(f)) : "-";
}

std::string Real(std::u16string_view text)
{
    f64 f;
    return ParseReal(text, &f) ? ToUtf8(RealText(f, 3)) : "-";
}

TEST(ValueTexts, WholeNumbersAreDigitsWithASign)
{
    EXPECT_EQ("42", Whole(u" 42\t"));
    EXPECT_EQ("-7", Whole(u"-7"));
    EXPECT_EQ("7", Whole(u"+7"));
    EXPECT_EQ("99999999999", Whole(u"99999999999"));
    for (const char16_t *psz : {u"", u" ", u"-", u"+", u"+-1", u"--1", u"1.5", u"1,5", u"1e3", u"0x10", u"12a", u"1 2",
                                u"inf", u"\u0663", u"\u221E"})
        EXPECT_EQ("-", Whole(psz)) << ToUtf8(psz);
    EXPECT_EQ("-", Whole(std::u16string(NUMBER_CHARS + 1, u'1')));
}

TEST(ValueTexts, RealNumbersTakeAPointOrACommaAndAnExponent)
{
    for (const char16_t *psz : {u"1.5", u"1,5", u"+1.5", u"15e-1", u"0,15E1", u" 1.50 "})
        EXPECT_EQ("1.500", Real(psz)) << ToUtf8(psz);
    EXPECT_EQ("0.250", Real(u".25"));
    EXPECT_EQ("-3.000", Real(u"-3."));
    EXPECT_EQ("0.000", Real(u"1e-999"));
    for (const char16_t *psz : {u"", u".", u",", u"1.2.3", u"1.234,5", u"1e", u"1e+", u"0x1p3", u"inf", u"-inf", u"nan",
                                u"NaN", u"infinity", u"1.5f", u"1.5 2"})
        EXPECT_EQ("-", Real(psz)) << ToUtf8(psz);
    f64 f;
    EXPECT_TRUE(ParseReal(u"-1e999", &f));
    EXPECT_EQ(-std::numeric_limits<f64>::max(), f);
}

TEST(ValueTexts, WhatABoxPrintsInFullIsReadAsTheSameNumber)
{
    std::mt19937 random(1);
    for (u32 i = 0; i < 2000; i++) {
        const f64 f = static_cast<f64>(static_cast<i32>(random())) / 1e5;
        f64 fRead = 0;
        ASSERT_TRUE(ParseReal(RealText(f, 5), &fRead));
        ASSERT_NEAR(f, fRead, 1e-9);
        ASSERT_TRUE(ParseWhole(WholeText(std::trunc(f)), &fRead));
        ASSERT_EQ(std::trunc(f), fRead);
    }
}

TEST(ValueLists, SourcesAreThoseOfTheMaskInTheirOrder)
{
    ControlRecord control = {};
    control.Base.dwSourceMask = ~0u;
    const std::vector<ListRow> all = {{u"Fixed Value", FLUIDSOURCE_FIXED},
                                      {u"Randomly Initialized", FLUIDSOURCE_RANDOM},
                                      {u"Wave", FLUIDSOURCE_WAVE},
                                      {u"Sound", FLUIDSOURCE_SOUND},
                                      {u"Periodically Randomized", FLUIDSOURCE_PERIODIC}};
    EXPECT_EQ(all, SourceRows(&control));
    control.Base.dwSourceMask = FLUIDSOURCE_SOUND | FLUIDSOURCE_FIXED | 64;
    EXPECT_EQ((std::vector<ListRow>{all[0], all[3]}), SourceRows(&control));
    control.Base.dwSourceMask = 0;
    EXPECT_TRUE(SourceRows(&control).empty());
}

TEST(ValueLists, AnItemIsFoundByItsValueElseTheFirstOneIsShown)
{
    std::vector<ItemSelectRow> items = {{u"Seven", 7, 0}, {nullptr, 3, 0}, {u"Also seven", 7, 0}};
    ControlRecord control = {};
    control.Base.dwType = CONTROLTYPE_ITEMSELECT;
    control.ItemSelect = {3, 7, 3, 0, items.data()};
    const std::vector<ListRow> rows = ItemRows(&control);
    EXPECT_EQ((std::vector<ListRow>{{u"Seven", 7}, {u"", 3}, {u"Also seven", 7}}), rows);
    EXPECT_EQ(1, ChosenItemRow(rows, &control));
    control.ItemSelect.nCurrentItemValue = 7;
    EXPECT_EQ(0, ChosenItemRow(rows, &control)) << "the first of two";
    control.ItemSelect.nCurrentItemValue = 4;
    EXPECT_EQ(0, ChosenItemRow(rows, &control));
    EXPECT_EQ(2, LongestRow(rows));
    control.ItemSelect.pItems = nullptr;
    EXPECT_TRUE(ItemRows(&control).empty());
    EXPECT_EQ(NO_ROW, ChosenItemRow({}, &control));
    EXPECT_EQ(NO_ROW, LongestRow({}));
}

TEST(NumberPanelLogic, BoxesPrintFiveDecimalsAndAFillOneForTheRange)
{
    const ControlRecord real = MakeFloat({0, 2, 0, 1, 0.25f, 1.75f, 0.5f, 0.5f, 0});
    EXPECT_EQ(u"0.25000", NumberText(&real, NumberPart::Min));
    EXPECT_EQ(u"0.2", NumberFillText(&real, NumberPart::Min));
    EXPECT_EQ(u"1.8", NumberFillText(&real, NumberPart::Max));
    EXPECT_EQ(u"0.50000", NumberFillText(&real, NumberPart::Value));
    EXPECT_EQ(u"2.00000", NumberFillText(&real, NumberPart::AbsMax));
    EXPECT_EQ(u"0.500", ReadOutText(&real));
    const ControlRecord whole = MakeInteger({-5, INT32_MAX, 0, 1, -5, 9, -2147483647 - 1, 0, 0, 0, 0});
    EXPECT_EQ(u"-5", NumberFillText(&whole, NumberPart::Min));
    EXPECT_EQ(u"2147483647", NumberText(&whole, NumberPart::AbsMax));
    EXPECT_EQ(u"-2147483648", ReadOutText(&whole));
}

TEST(NumberPanelLogic, ASliderOfWholeNumbersRoundsHalvesAwayFromZero)
{
    const ControlRecord control = MakeInteger({-10, 10, -10, 10, -10, 10, 3, 0, 0, 0, 0});
    SliderInfo before = {};
    ShowInSlider(&control, &before);
    const std::pair<f32, i64> apCase[] = {{2.4f, 2}, {2.5f, 3}, {0.49999997f, 0}, {-0.4f, 0}, {-2.5f, -3}, {-2.4f, -2}};
    for (const auto &[fSlider, nWanted] : apCase) {
        SliderInfo now = before;
        now.fValue = fSlider;
        const std::vector<FieldWrite> writes = SliderWrites(&control, place, before, now);
        ASSERT_EQ(3u, writes.size());
        EXPECT_EQ(EditField::IntegerValue, writes[2].eField);
        EXPECT_EQ(nWanted, writes[2].nValue) << fSlider;
        EXPECT_EQ(-10, writes[0].nValue);
    }
}

TEST(NumberPanelLogic, ThumbsThatWereNotMovedKeepWhatTheRecordHoldsNow)
{
    ControlRecord control = MakeInteger({0, INT32_MAX, 0, 10, 16777217, INT32_MAX - 2, 1, 0, 0, 0, 0});
    SliderInfo before = {};
    ShowInSlider(&control, &before);
    SliderInfo now = before;
    now.fRangeHigh = 5;
    control.Integer.nValue = 77; // its source has moved on
    const std::vector<FieldWrite> writes = SliderWrites(&control, place, before, now);
    EXPECT_EQ(16777217, writes[0].nValue) << "finer than the slider's numbers";
    EXPECT_EQ(5, writes[1].nValue);
    EXPECT_EQ(77, writes[2].nValue);
}

TEST(NumberPanelLogic, WhatIsNoNumberIsNotWritten)
{
    const ControlRecord control = MakeFloat({0, INF, 0, 1, NOT_A_NUMBER, 1, 0.5f, 0.5f, 0});
    SliderInfo before = {};
    ShowInSlider(&control, &before);
    SliderInfo now = before;
    now.fRangeHigh = INF;
    const std::vector<FieldWrite> writes = SliderWrites(&control, place, before, now);
    ASSERT_EQ(1u, writes.size());
    EXPECT_EQ(EditField::FloatValue, writes[0].eField);
}

TEST(NumberPanelLogic, ArrowKeysStepByOneOrAThousandthOfTheRange)
{
    const ControlRecord whole = MakeInteger({0, 100000, 0, 10, 0, 10, 5, 5, 0, 0, 0});
    EXPECT_EQ(15, StepNumber(&whole, 5, 10));
    ControlRecord real = MakeFloat({-1, 3, 0, 1, 0, 1, 0.5f, 0.5f, 0});
    EXPECT_DOUBLE_EQ(0.46, StepNumber(&real, 0.5, -10));
    real.Float.fAbsMax = -5; // the wrong way round
    EXPECT_DOUBLE_EQ(0.504, StepNumber(&real, 0.5, 1));
    for (const f32 fEnd : {-1.0f, INF, NOT_A_NUMBER}) {
        real.Float.fAbsMax = fEnd;
        EXPECT_EQ(0.5, StepNumber(&real, 0.5, 1)) << fEnd;
    }
}

TEST(NumberPanelLogic, NumbersBeyondARecordsAreWrittenAsFarAwayOnes)
{
    const ControlRecord whole = MakeInteger({0, 100, 0, 100, 0, 100, 5, 5, 0, 0, 0});
    EXPECT_LT(INT32_MAX, WriteNumberPart(&whole, place, NumberPart::Max, 1e300).nValue);
    EXPECT_GT(INT32_MIN, WriteNumberPart(&whole, place, NumberPart::Max, -1e300).nValue);
    const ControlRecord real = MakeFloat({0, 1, 0, 1, 0, 1, 0, 0, 0});
    EXPECT_EQ(std::numeric_limits<f32>::max(), WriteNumberPart(&real, place, NumberPart::Max, 1e300).fValue);
}

TEST(NumberPanelLogic, EachThumbHasADefaultOfItsOwn)
{
    const ControlRecord control = MakeFloat({0, 9, 1, 2, 4, 5, 6, 3, 0});
    const auto check = [&](u32 dwThumb, EditField eField, f32 fDefault) {
        const FieldWrite write = WriteThumbDefault(&control, place, dwThumb);
        EXPECT_EQ(eField, write.eField);
        EXPECT_EQ(fDefault, write.fValue);
    };
    check(THUMB_LOW, EditField::FloatMin, 1);
    check(THUMB_HIGH, EditField::FloatMax, 2);
    check(THUMB_VALUE, EditField::FloatValue, 3);
}

} // namespace
