// NumberPanel.cpp -- what the panel of integers and floats shows and writes
#include "controls/panels/NumberPanel.h"

#include "controls/panels/ValueLists.h"
#include "controls/panels/ValueTexts.h"
#include "platform/OrderedRows.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

constexpr i32 DECIMALS = 5, FILL_DECIMALS = 1, READ_OUT_DECIMALS = 3; // of floats
constexpr f64 FLOAT_STEP = 0.001;                                     // of the absolute range

struct PartRow {
    NumberPart ePart;
    i32 ControlInteger::*pn;
    f32 ControlFloat::*pf;
    EditField eInteger, eFloat; // Count: the user cannot write it
    i32 nFillDecimals;
};

#define NUMBER_PART(part, fill)                                                                                        \
    {                                                                                                                  \
        NumberPart::part, &ControlInteger::n##part, &ControlFloat::f##part, EditField::Count, EditField::Count, fill   \
    }
#define WRITTEN_PART(part, fill)                                                                                       \
    {                                                                                                                  \
        NumberPart::part, &ControlInteger::n##part, &ControlFloat::f##part, EditField::Integer##part,                  \
            EditField::Float##part, fill                                                                               \
    }
constexpr PartRow asPart[] = {
    NUMBER_PART(AbsMin, DECIMALS),     NUMBER_PART(AbsMax, DECIMALS),       NUMBER_PART(DefaultMin, DECIMALS),
    NUMBER_PART(DefaultMax, DECIMALS), WRITTEN_PART(Min, FILL_DECIMALS),    WRITTEN_PART(Max, FILL_DECIMALS),
    WRITTEN_PART(Value, DECIMALS),     NUMBER_PART(DefaultValue, DECIMALS),
};
static_assert(std::size(asPart) == static_cast<size_t>(NumberPart::Count));
static_assert(RowsStandInOrder(asPart, &PartRow::ePart));

const PartRow &RowOf(NumberPart ePart)
{
    return asPart[static_cast<u32>(ePart)];
}

f64 IntegerOf(const ControlRecord *pctl, const PartRow &part)
{
    return pctl->Integer.*part.pn;
}

f64 FloatOf(const ControlRecord *pctl, const PartRow &part)
{
    return static_cast<f64>(pctl->Float.*part.pf);
}

// Far beyond the limits it is as good as just beyond them.
FieldWrite WriteInteger(const EditPlace &place, const PartRow &part, f64 f)
{
    const f64 fFar = 1e15;
    return WriteNumber(place, part.eInteger, static_cast<i64>(std::isnan(f) ? 0 : std::clamp(f, -fFar, fFar)));
}

FieldWrite WriteReal(const EditPlace &place, const PartRow &part, f64 f)
{
    constexpr f64 fFar = std::numeric_limits<f32>::max();
    return WriteFloat(place, part.eFloat, static_cast<f32>(std::isfinite(f) ? std::clamp(f, -fFar, fFar) : f));
}

std::u16string IntegerText(f64 f, i32)
{
    return WholeText(f);
}

// The slider's numbers are floats.
f64 RoundToInteger(f64 f)
{
    return std::trunc(f < 0 ? f - 0.5 : f + 0.5);
}

f64 Same(f64 f)
{
    return f;
}

f64 IntegerStep(const ControlRecord *)
{
    return 1;
}

// None where the range has no width or no end.
f64 FloatStep(const ControlRecord *pctl)
{
    const f64 fRange = static_cast<f64>(pctl->Float.fAbsMax) - static_cast<f64>(pctl->Float.fAbsMin);
    return std::isfinite(fRange) ? std::fabs(fRange) * FLOAT_STEP : 0;
}

// What sets the two kinds of numbers apart.
struct NumberKind {
    u32 bFloat;
    f64 (*pfnNumber)(const ControlRecord *pctl, const PartRow &part);
    FieldWrite (*pfnWrite)(const EditPlace &place, const PartRow &part, f64 f);
    bool (*pfnParse)(std::u16string_view text, f64 *pf);
    std::u16string (*pfnText)(f64 f, i32 nDecimals);
    f64 (*pfnFromSlider)(f64 f);
    f64 (*pfnStep)(const ControlRecord *pctl);
};
constexpr NumberKind IntegerKind = {0, IntegerOf, WriteInteger, ParseWhole, IntegerText, RoundToInteger, IntegerStep};
constexpr NumberKind FloatKind = {1, FloatOf, WriteReal, ParseReal, RealText, Same, FloatStep};

const NumberKind &KindOf(const ControlRecord *pctl)
{
    return pctl->Base.dwType == CONTROLTYPE_FLOAT ? FloatKind : IntegerKind;
}

constexpr NumberFlag asFlag[] = {
    {u"Only Even", EditField::OnlyEven, EditField::Count, [](const ControlInteger &Int) { return Int.bOnlyEven; },
     nullptr},
    {u"Only Odd", EditField::OnlyOdd, EditField::Count, [](const ControlInteger &Int) { return Int.bOnlyOdd; },
     nullptr},
    {u"Min/Max", EditField::IntegerMinMax, EditField::FloatMinMax,
     [](const ControlInteger &Int) { return Int.bMinMax; }, [](const ControlFloat &Float) { return Float.bMinMax; }},
};

struct ThumbRow {
    u32 dwThumb;
    NumberPart ePart, eDefault;
    f32 SliderInfo::*pf;
};
constexpr ThumbRow asThumb[] = {
    {THUMB_LOW, NumberPart::Min, NumberPart::DefaultMin, &SliderInfo::fRangeLow},
    {THUMB_HIGH, NumberPart::Max, NumberPart::DefaultMax, &SliderInfo::fRangeHigh},
    {THUMB_VALUE, NumberPart::Value, NumberPart::DefaultValue, &SliderInfo::fValue},
};

bool HasMoved(const ThumbRow &row, const SliderInfo &before, const SliderInfo &now)
{
    return std::bit_cast<u32>(before.*row.pf) != std::bit_cast<u32>(now.*row.pf);
}

} // namespace

bool IsNumber(const ControlRecord *pctl)
{
    return (pctl->Base.dwType == CONTROLTYPE_INTEGER) || (pctl->Base.dwType == CONTROLTYPE_FLOAT);
}

f64 NumberOf(const ControlRecord *pctl, NumberPart ePart)
{
    return KindOf(pctl).pfnNumber(pctl, RowOf(ePart));
}

std::u16string NumberText(const ControlRecord *pctl, NumberPart ePart)
{
    return KindOf(pctl).pfnText(NumberOf(pctl, ePart), DECIMALS);
}

std::u16string NumberFillText(const ControlRecord *pctl, NumberPart ePart)
{
    return KindOf(pctl).pfnText(NumberOf(pctl, ePart), RowOf(ePart).nFillDecimals);
}

std::u16string ReadOutText(const ControlRecord *pctl)
{
    return KindOf(pctl).pfnText(NumberOf(pctl, NumberPart::Value), READ_OUT_DECIMALS);
}

bool PartIsShown(const ControlRecord *pctl, NumberPart ePart)
{
    return SourceIsFixed(pctl) == (ePart == NumberPart::Value);
}

bool ParseNumber(const ControlRecord *pctl, std::u16string_view text, f64 *pf)
{
    return KindOf(pctl).pfnParse(text, pf);
}

f64 StepNumber(const ControlRecord *pctl, f64 f, i32 nSteps)
{
    return f + KindOf(pctl).pfnStep(pctl) * nSteps;
}

FieldWrite WriteNumberPart(const ControlRecord *pctl, const EditPlace &place, NumberPart ePart, f64 f)
{
    return KindOf(pctl).pfnWrite(place, RowOf(ePart), f);
}

std::span<const NumberFlag> NumberFlags()
{
    return asFlag;
}

EditField FlagField(const ControlRecord *pctl, const NumberFlag &flag)
{
    return KindOf(pctl).bFloat ? flag.eFloat : flag.eInteger;
}

bool FlagIsSet(const ControlRecord *pctl, const NumberFlag &flag)
{
    return (KindOf(pctl).bFloat ? flag.pfnFloat(pctl->Float) : flag.pfnInteger(pctl->Integer)) != 0;
}

void ShowInSlider(const ControlRecord *pctl, SliderInfo *pInfo)
{
    pInfo->fMinimum = static_cast<f32>(NumberOf(pctl, NumberPart::AbsMin));
    pInfo->fMaximum = static_cast<f32>(NumberOf(pctl, NumberPart::AbsMax));
    for (const ThumbRow &row : asThumb)
        pInfo->*row.pf = static_cast<f32>(NumberOf(pctl, row.ePart));
    pInfo->bRangeMode = !SourceIsFixed(pctl);
    pInfo->bShowValue = 1;
    pInfo->bFloat = KindOf(pctl).bFloat;
}

std::vector<FieldWrite> SliderWrites(const ControlRecord *pctl, const EditPlace &place, const SliderInfo &before,
                                     const SliderInfo &now)
{
    std::vector<FieldWrite> writes;
    for (const ThumbRow &row : asThumb) {
        const f64 f = HasMoved(row, before, now) ? KindOf(pctl).pfnFromSlider(static_cast<f64>(now.*row.pf))
                                                 : NumberOf(pctl, row.ePart);
        if (std::isfinite(f))
            writes.push_back(WriteNumberPart(pctl, place, row.ePart, f));
    }
    return writes;
}

FieldWrite WriteThumbDefault(const ControlRecord *pctl, const EditPlace &place, u32 dwThumb)
{
    const ThumbRow &row = asThumb[dwThumb - THUMB_LOW];
    return WriteNumberPart(pctl, place, row.ePart, NumberOf(pctl, row.eDefault));
}
