// EditFieldRows.cpp -- the table of fields: where each stands, what it takes, what else writing it does
#include "editing/EditFieldRows.h"

#include "controls/FluidSources.h"
#include "platform/OrderedRows.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>

namespace {

bool AcceptSource(const EditTarget &target, FieldWrite *pWrite)
{
    const u32 dwSource = static_cast<u32>(pWrite->nValue);
    return std::has_single_bit(dwSource) && (dwSource & target.pctl->Base.dwSourceMask);
}

bool AcceptUnit(const EditTarget &, FieldWrite *pWrite)
{
    return pWrite->fValue >= 0 && pWrite->fValue <= 1; // no number fails both
}

// The upper limit wins where a module has them the wrong way round.
bool LimitInteger(const EditTarget &target, FieldWrite *pWrite)
{
    const ControlInteger &Int = target.pctl->Integer;
    pWrite->nValue = std::min<i64>(std::max<i64>(pWrite->nValue, Int.nAbsMin), Int.nAbsMax);
    return true;
}

bool LimitFloat(const EditTarget &target, FieldWrite *pWrite)
{
    const ControlFloat &Float = target.pctl->Float;
    if (std::isnan(pWrite->fValue))
        return false;
    pWrite->fValue = std::min(std::max(pWrite->fValue, Float.fAbsMin), Float.fAbsMax);
    return std::isfinite(pWrite->fValue);
}

bool AcceptWavePeriod(const EditTarget &target, FieldWrite *pWrite)
{
    return (pWrite->nValue >= 400 && pWrite->nValue <= 120000) || pWrite->nValue == DURATION_NEVER ||
           pWrite->nValue == target.pctl->Base.nDefaultWavePeriod;
}

bool AcceptTile(const EditTarget &target, FieldWrite *pWrite)
{
    const ControlTile &Tile = target.pctl->Tile;
    return pWrite->iElement < std::min(u64{Tile.nXTiles} * Tile.nYTiles, u64{TILES});
}

bool AcceptList(const EditTarget &, FieldWrite *pWrite)
{
    return pWrite->sText.size() <= FILE_LIST_CHARS && pWrite->sText.find(u'\0') == pWrite->sText.npos;
}

// What a panel's lists offer, and the later rules that a file may name. -1: a list without a selection.
bool AcceptRuleSource(const EditTarget &target, FieldWrite *pWrite)
{
    return RuleSourceFits(target.lppsi, pWrite->nValue);
}

void DrawPhase(const EditTarget &target)
{
    if (target.pctl->Base.bRandomPhase)
        target.pctl->Base.fWavePhase = UnitRandom();
}

void ClearOnlyOdd(const EditTarget &target)
{
    if (target.pctl->Integer.bOnlyEven)
        target.pctl->Integer.bOnlyOdd = 0;
}

void ClearOnlyEven(const EditTarget &target)
{
    if (target.pctl->Integer.bOnlyOdd)
        target.pctl->Integer.bOnlyEven = 0;
}

constexpr i64 I32_LOWEST = INT32_MIN;
constexpr i64 I32_HIGHEST = INT32_MAX;

#define OF_CONTROL(type, field) PlaceKind::Control, type, FieldType::U32, offsetof(ControlRecord, field)
#define OF_CONTROL_I32(type, field) PlaceKind::Control, type, FieldType::I32, offsetof(ControlRecord, field)
#define OF_CONTROL_F32(type, field) PlaceKind::Control, type, FieldType::F32, offsetof(ControlRecord, field)
#define OF_SLOT(field, type) PlaceKind::Module, ANY_TYPE, FieldType::type, offsetof(ModuleSlot, field)
#define OF_RULE(field) PlaceKind::Rule, ANY_TYPE, FieldType::I32, offsetof(MixRule, field)

constexpr FieldRow asField[] = {
    {EditField::Source, u"Source", OF_CONTROL(ANY_TYPE, Base.dwSource), MARKS | RESETS, 1, 16, AcceptSource, nullptr},
    {EditField::WavePeriod, u"Wave Period", OF_CONTROL(ANY_TYPE, Base.nWavePeriod), MARKS | RESETS, 0, ALL_ONES,
     AcceptWavePeriod, nullptr},
    {EditField::RandomPhase, u"Randomize Wave Phase", OF_CONTROL(ANY_TYPE, Base.bRandomPhase), MARKS | RESETS, 0, 1,
     nullptr, DrawPhase},
    {EditField::WavePhase, u"Wave Phase", OF_CONTROL_F32(ANY_TYPE, Base.fWavePhase), MARKS | RESETS, 0, 0, AcceptUnit,
     nullptr},
    {EditField::WaveType, u"Wave Type", OF_CONTROL(ANY_TYPE, Base.dwWaveType), MARKS | RESETS, WAVETYPE_SINE,
     WAVETYPE_RAMP, nullptr, nullptr},
    {EditField::Samples, u"Sensitivity", OF_CONTROL(ANY_TYPE, Base.nSamples), MARKS | RESETS, 0, SOUND_HISTORY, nullptr,
     nullptr},
    {EditField::NoisePeriod, u"Reset Frequency", OF_CONTROL(ANY_TYPE, Base.nNoisePeriod), MARKS | RESETS, 0, 16000,
     nullptr, nullptr},

    {EditField::IntegerValue, u"Value", OF_CONTROL_I32(CONTROLTYPE_INTEGER, Integer.nValue), MARKS | RESETS | NEAREST,
     I32_LOWEST, I32_HIGHEST, LimitInteger, nullptr},
    {EditField::IntegerMin, u"Minimum", OF_CONTROL_I32(CONTROLTYPE_INTEGER, Integer.nMin), MARKS | RESETS | NEAREST,
     I32_LOWEST, I32_HIGHEST, LimitInteger, nullptr},
    {EditField::IntegerMax, u"Maximum", OF_CONTROL_I32(CONTROLTYPE_INTEGER, Integer.nMax), MARKS | RESETS | NEAREST,
     I32_LOWEST, I32_HIGHEST, LimitInteger, nullptr},
    {EditField::OnlyEven, u"Only Even", OF_CONTROL(CONTROLTYPE_INTEGER, Integer.bOnlyEven), MARKS, 0, 1, nullptr,
     ClearOnlyOdd},
    {EditField::OnlyOdd, u"Only Odd", OF_CONTROL(CONTROLTYPE_INTEGER, Integer.bOnlyOdd), MARKS, 0, 1, nullptr,
     ClearOnlyEven},
    {EditField::IntegerMinMax, u"Min/Max", OF_CONTROL(CONTROLTYPE_INTEGER, Integer.bMinMax), MARKS, 0, 1, nullptr,
     nullptr},

    {EditField::FloatValue, u"Value", OF_CONTROL_F32(CONTROLTYPE_FLOAT, Float.fValue), MARKS | RESETS, 0, 0, LimitFloat,
     nullptr},
    {EditField::FloatMin, u"Minimum", OF_CONTROL_F32(CONTROLTYPE_FLOAT, Float.fMin), MARKS | RESETS, 0, 0, LimitFloat,
     nullptr},
    {EditField::FloatMax, u"Maximum", OF_CONTROL_F32(CONTROLTYPE_FLOAT, Float.fMax), MARKS | RESETS, 0, 0, LimitFloat,
     nullptr},
    {EditField::FloatMinMax, u"Min/Max", OF_CONTROL(CONTROLTYPE_FLOAT, Float.bMinMax), MARKS, 0, 1, nullptr, nullptr},

    {EditField::Item, u"Selection", OF_CONTROL(CONTROLTYPE_ITEMSELECT, ItemSelect.nCurrentItemValue), MARKS | RESETS, 0,
     9998, nullptr, nullptr},
    {EditField::State, u"State", OF_CONTROL(CONTROLTYPE_BOOLEAN, Boolean.bState), MARKS | RESETS, 0, 1, nullptr,
     nullptr},
    {EditField::Threshold, u"Threshold", OF_CONTROL_F32(CONTROLTYPE_BOOLEAN, Boolean.fThreshold), MARKS | RESETS, 0, 0,
     AcceptUnit, nullptr},

    // The list before what setting it changes: it is put back in this order.
    {EditField::FileList, u"File List", PlaceKind::Control, CONTROLTYPE_FILESELECT, FieldType::List,
     offsetof(ControlRecord, FileSelect.pszFileList), MARKS, 0, 0, AcceptList, nullptr},
    {EditField::LineCount, u"File List", OF_CONTROL(CONTROLTYPE_FILESELECT, FileSelect.nLines), MARKS | KEPT, 0,
     ALL_ONES, nullptr, nullptr},
    {EditField::CurrentLine, u"File List", OF_CONTROL(CONTROLTYPE_FILESELECT, FileSelect.nCurrentLine), KEPT, 0,
     ALL_ONES, nullptr, nullptr},
    {EditField::CurrentFile, u"File List", PlaceKind::Control, CONTROLTYPE_FILESELECT, FieldType::Text,
     offsetof(ControlRecord, FileSelect.szCurrentFile), KEPT, 0, 0, nullptr, nullptr},
    {EditField::Shuffle, u"Shuffle", OF_CONTROL(CONTROLTYPE_FILESELECT, FileSelect.bShuffle), MARKS, 0, 1, nullptr,
     nullptr},

    {EditField::Tile, u"Tiles", PlaceKind::Control, CONTROLTYPE_TILE, FieldType::Tile,
     offsetof(ControlRecord, Tile.pTileMask), MARKS, 0, 1, AcceptTile, nullptr},
    {EditField::TileColumns, u"Tiles", OF_CONTROL(CONTROLTYPE_TILE, Tile.nXTiles), MARKS | KEPT, 1, CONTROL_TILES_MAX,
     nullptr, nullptr},
    {EditField::TileRows, u"Tiles", OF_CONTROL(CONTROLTYPE_TILE, Tile.nYTiles), MARKS | KEPT, 1, CONTROL_TILES_MAX,
     nullptr, nullptr},
    {EditField::TileColumnLimit, u"Tiles", OF_CONTROL(CONTROLTYPE_TILE, Tile.nXLimit), KEPT, 1, CONTROL_TILES_MAX,
     nullptr, nullptr},
    {EditField::TileRowLimit, u"Tiles", OF_CONTROL(CONTROLTYPE_TILE, Tile.nYLimit), KEPT, 1, CONTROL_TILES_MAX, nullptr,
     nullptr},

    {EditField::Duration, u"Module Reset Frequency", OF_SLOT(nDuration, U32), MARKS | RESETS, 1, DURATION_NEVER,
     nullptr, nullptr},
    {EditField::ClearOnReset, u"Clear Plane on Reset", OF_SLOT(bClearOnReset, I32), 0, 0, 1, nullptr, nullptr},
    {EditField::CallsPerFrame, u"Number of Calls per Frame", OF_SLOT(nCallsPerFrame, I32), MARKS, -32, 32, nullptr,
     nullptr},
    {EditField::Active, u"Included in Rendering", OF_SLOT(bActive, I32), 0, 0, 1, nullptr, nullptr},
    {EditField::ResetPending, u"Reset", OF_SLOT(bResetPending, I32), 0, 0, 1, nullptr, nullptr},

    {EditField::Paused, u"Plane Drawing", PlaceKind::Plane, ANY_TYPE, FieldType::U32, offsetof(PlaneState, bPaused), 0,
     0, 1, nullptr, nullptr},

    {EditField::Source1, u"Source #1", OF_RULE(SrcIdx1), MARKS, -1, I32_HIGHEST, AcceptRuleSource, nullptr},
    {EditField::Source2, u"Source #2", OF_RULE(SrcIdx2), MARKS, -1, I32_HIGHEST, AcceptRuleSource, nullptr},
    {EditField::Mask, u"Mix Using", OF_RULE(AplhaIdx), MARKS, -1, I32_HIGHEST, AcceptRuleSource, nullptr},
    {EditField::Operator, u"Operator", OF_RULE(MixOp), MARKS, 0, MIXOP_COUNT - 1, nullptr, nullptr},
};
static_assert(std::size(asField) == static_cast<size_t>(EditField::Count));
static_assert(RowsStandInOrder(asField, &FieldRow::eField));

} // namespace

std::span<const FieldRow> FieldRows()
{
    return asField;
}

const FieldRow *FieldRowOf(EditField eField)
{
    return eField < EditField::Count ? &asField[static_cast<u32>(eField)] : nullptr;
}

const char16_t *FieldName(EditField eField)
{
    const FieldRow *pRow = FieldRowOf(eField);
    return pRow ? pRow->pszName : nullptr;
}

bool FieldMarks(EditField eField)
{
    const FieldRow *pRow = FieldRowOf(eField);
    return pRow && (pRow->dwFlags & MARKS);
}
