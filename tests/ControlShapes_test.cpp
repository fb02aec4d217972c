// ControlShapes_test.cpp -- tests ControlShapes.cpp and LookShades.cpp
#include "toolkit/ControlShapes.h"
#include "toolkit/LookShades.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

TEST(ControlShapes, ACheckBoxTooNarrowForItsTextKeepsItsMark)
{
    for (const CheckPlacement e :
         {CheckPlacement::MarkLeft, CheckPlacement::Centred, CheckPlacement::RightAligned, CheckPlacement::TextLeft}) {
        const CheckBoxShape shape = PlaceCheckMark(e, 30, 20, 14, 500);
        EXPECT_GE(shape.mark.x, 0);
        EXPECT_LE(shape.mark.x + shape.mark.w, 30);
        EXPECT_EQ(3, shape.mark.y);
        EXPECT_GE(shape.text.w, 0);
        EXPECT_TRUE(shape.text.x + shape.text.w <= shape.mark.x || shape.text.x >= shape.mark.x + shape.mark.w);
        EXPECT_EQ(0, PlaceCheckMark(e, 3, 20, 14, 500).text.w);
    }
}

TEST(ControlShapes, AtItsOwnWidthACheckBoxShowsAllOfItsText)
{
    for (const CheckPlacement e :
         {CheckPlacement::MarkLeft, CheckPlacement::Centred, CheckPlacement::RightAligned, CheckPlacement::TextLeft})
        EXPECT_GE(PlaceCheckMark(e, CheckBoxWidth(e, 14, 77), 20, 14, 77).text.w, 77);
    EXPECT_EQ(14, CheckBoxWidth(CheckPlacement::MarkLeft, 14, 0));
}

TEST(ControlShapes, AGroupBoxIsPlacedWithinItsBoundsHoweverSmall)
{
    const GroupBoxShape shape = PlaceGroupBox(100, 50, 15, 300);
    EXPECT_EQ(7, shape.outline.y);
    EXPECT_EQ(43, shape.outline.h);
    EXPECT_EQ(80, shape.caption.w) << "the corner stays an outline's";
    const GroupBoxShape tiny = PlaceGroupBox(4, 3, 15, 300);
    for (const ControlBox &box : {tiny.outline, tiny.caption, tiny.contents}) {
        EXPECT_GE(box.w, 0);
        EXPECT_GE(box.h, 0);
    }
}

TEST(ControlShapes, CaptionsAreCutButNoCharacterIsSplit)
{
    EXPECT_EQ(u"[ a ]", GroupCaption(u"a"));
    EXPECT_EQ(u"", GroupCaption(u""));
    EXPECT_EQ(u"[ " + std::u16string(64, u'y') + u" ]", GroupCaption(std::u16string(65, u'y')));
    EXPECT_EQ(u"[ " + std::u16string(63, u'y') + u" ]", GroupCaption(std::u16string(63, u'y') + u"\U0001F3B5"));
    EXPECT_EQ(128u, CheckCaption(std::u16string(200, u'y')).size());
}

TEST(LookShades, WhateverTheUserChoosesMarksAndSelectionsStandOut)
{
    for (const auto &[dwBack, dwText] : std::vector<std::pair<u32, u32>>{{0x000000, 0x8CFFFF},
                                                                         {0xFFFFFF, 0x000000},
                                                                         {0x000000, 0x000000},
                                                                         {0xFFFFFF, 0xFFFFFF},
                                                                         {0x808080, 0x7F7F7F},
                                                                         {0x0000FF, 0xFF0000}}) {
        const LookShades look = MakeLookShades(dwBack, dwText);
        EXPECT_EQ(dwText, look.dwText);
        EXPECT_GE(ColorContrast(dwBack, look.dwInk), 3) << std::hex << dwBack;
        EXPECT_GE(ColorContrast(dwBack, look.dwDisabled), 3) << std::hex << dwBack;
        EXPECT_GE(ColorContrast(dwBack, look.dwLink), 4.5) << std::hex << dwBack;
        EXPECT_GE(ColorContrast(look.dwSelected, look.dwSelectedText), 4.5) << std::hex << dwBack;
        EXPECT_GE(ColorContrast(dwBack, look.dwLine), 1.3) << std::hex << dwBack;
        EXPECT_GE(ColorContrast(dwBack, look.dwSelected), 1.15) << std::hex << dwBack;
    }
    EXPECT_EQ(0x8CFFFFu, MakeLookShades(0, 0x8CFFFF).dwInk) << "what can be told is left as it is";
    EXPECT_NEAR(21, ColorContrast(0xFFFFFF, 0), 0.01);
}

} // namespace
