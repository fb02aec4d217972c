// EditFields.cpp -- the table of fields, and the functions that read, limit and write by its rows
#include "editing/EditFields.h"

#include "controls/ControlManager.h"
#include "controls/FluidSources.h"
#include "editing/EditRows.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

constexpr u32 ANY_TYPE = 0; // a control of any type that has a value
constexpr u32 TILES = CONTROL_TILES_MAX * CONTROL_TILES_MAX;

enum class FieldType { I32, U32, F32, Tile, List, Text };

enum : u32 {
    MARKS = 1,  // a preset file holds the field
    RESETS = 2, // the module starts over, unless it is a control that can be animated
    KEPT = 4,   // only put back
};

// Brings a value that came from outside into its limits; false: it cannot be taken.
using AcceptFn = bool (*)(const EditTarget &target, FieldWrite *pWrite);
// What else a write from outside does.
using AfterFn = void (*)(const EditTarget &target);

struct FieldRow {
    EditField eField;
    const char16_t *pszName;
    PlaceKind eHome; // Control, Module, Plane or Rule
    u32 dwControlType;
    FieldType eType;
    size_t cbOffset; // from the start of the record
    u32 dwFlags;
    i64 nMin; // limits of whole numbers; a number beyond them is refused
    i64 nMax;
    AcceptFn pfnAccept; // null: the limits alone
    AfterFn pfnAfter;   // null: nothing
};

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

    {EditField::IntegerValue, u"Value", OF_CONTROL_I32(CONTROLTYPE_INTEGER, Integer.nValue), MARKS | RESETS, I32_LOWEST,
     I32_HIGHEST, LimitInteger, nullptr},
    {EditField::IntegerMin, u"Minimum", OF_CONTROL_I32(CONTROLTYPE_INTEGER, Integer.nMin), MARKS | RESETS, I32_LOWEST,
     I32_HIGHEST, LimitInteger, nullptr},
    {EditField::IntegerMax, u"Maximum", OF_CONTROL_I32(CONTROLTYPE_INTEGER, Integer.nMax), MARKS | RESETS, I32_LOWEST,
     I32_HIGHEST, LimitInteger, nullptr},
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

constexpr bool RowsStandInOrder()
{
    for (size_t i = 0; i < std::size(asField); i++)
        if (asField[i].eField != static_cast<EditField>(i))
            return false;
    return true;
}
static_assert(RowsStandInOrder());

const FieldRow *RowOf(EditField eField)
{
    return eField < EditField::Count ? &asField[static_cast<u32>(eField)] : nullptr;
}

bool IsControlPlace(PlaceKind eKind)
{
    return eKind == PlaceKind::Control || eKind == PlaceKind::Weight;
}

// The record that the row's offset counts from; null: no field of what stands there.
u8 *RecordOf(const FieldRow &row, const EditTarget &target)
{
    if (row.eHome != (IsControlPlace(target.eKind) ? PlaceKind::Control : target.eKind))
        return nullptr;
    if (row.eHome == PlaceKind::Module)
        return reinterpret_cast<u8 *>(target.pms);
    if (row.eHome == PlaceKind::Plane)
        return reinterpret_cast<u8 *>(target.pps);
    if (row.eHome == PlaceKind::Rule)
        return reinterpret_cast<u8 *>(target.pmr);
    const u32 dwType = target.pctl->Base.dwType;
    const bool bFits = row.dwControlType == ANY_TYPE ? dwType >= CONTROLTYPE_INTEGER && dwType <= CONTROLTYPE_TILE
                                                     : dwType == row.dwControlType;
    return bFits ? reinterpret_cast<u8 *>(target.pctl) : nullptr;
}

template <typename T> T Load(const u8 *p)
{
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

// What stands in the field; false: no such element.
bool ReadAt(const FieldRow &row, const EditTarget &target, const u8 *p, FieldWrite *pWrite)
{
    switch (row.eType) {
    case FieldType::I32:
        pWrite->nValue = Load<i32>(p);
        break;
    case FieldType::U32:
        pWrite->nValue = Load<u32>(p);
        break;
    case FieldType::F32:
        pWrite->fValue = Load<f32>(p);
        break;
    case FieldType::Tile:
        if (pWrite->iElement >= TILES || !Load<u32 *>(p))
            return false;
        pWrite->nValue = Load<u32 *>(p)[pWrite->iElement];
        break;
    case FieldType::List:
        pWrite->sText = Load<char16_t *>(p) ? Load<char16_t *>(p) : u"";
        break;
    case FieldType::Text:
        pWrite->sText = target.pctl->FileSelect.szCurrentFile;
        break;
    }
    return true;
}

bool SameValue(const FieldWrite &a, const FieldWrite &b)
{
    return a.nValue == b.nValue && std::bit_cast<u32>(a.fValue) == std::bit_cast<u32>(b.fValue) && a.sText == b.sText;
}

// A reset that has been served since the value was kept has to come again: the module made itself from what is now
// undone. Serving one moves qwNextReset.
void PutBackReset(ModuleSlot *pms, const FieldWrite &write)
{
    pms->bResetPending = pms->qwNextReset == write.qwNextReset ? static_cast<i32>(write.nValue) : 1;
}

void WriteAt(const FieldRow &row, const EditTarget &target, u8 *p, const FieldWrite &write)
{
    const u32 dwValue = static_cast<u32>(write.nValue);
    if (row.eType == FieldType::List)
        SetListText(target.pctl, write.sText);
    else if (row.eType == FieldType::Text)
        SetCurrentFile(target.pctl, write.sText);
    else if (row.eField == EditField::LineCount)
        SetLineCount(target.pctl, dwValue);
    else if (row.eType == FieldType::Tile)
        Load<u32 *>(p)[write.iElement] = dwValue;
    else if (row.eType == FieldType::F32)
        std::memcpy(p, &write.fValue, sizeof write.fValue);
    else
        std::memcpy(p, &dwValue, sizeof dwValue);
}

bool GoesWithList(EditField eField)
{
    return eField == EditField::LineCount || eField == EditField::CurrentLine || eField == EditField::CurrentFile;
}

void KeepElements(const FieldRow &row, const EditTarget &target, const EditPlace &place, const u8 *p,
                  std::vector<FieldWrite> *pKept)
{
    for (u32 i = 0; i < (row.eType == FieldType::Tile ? TILES : 1u); i++) {
        FieldWrite write = WriteNumber(place, row.eField, 0, i);
        if (row.eField == EditField::ResetPending)
            write.qwNextReset = target.pms->qwNextReset;
        if (ReadAt(row, target, p + row.cbOffset, &write))
            pKept->push_back(std::move(write));
    }
}

} // namespace

const char16_t *FieldName(EditField eField)
{
    const FieldRow *pRow = RowOf(eField);
    return pRow ? pRow->pszName : nullptr;
}

bool FieldMarks(EditField eField)
{
    const FieldRow *pRow = RowOf(eField);
    return pRow && (pRow->dwFlags & MARKS);
}

bool WriteResets(const EditTarget &target, EditField eField)
{
    if (!target.pms || !(RowOf(eField)->dwFlags & RESETS))
        return false;
    return !target.pctl || !ControlSupportsFluidSources(target.pctl);
}

bool ReadField(const PresetState *lppsi, const EditPlace &place, EditField eField, u32 iElement, FieldWrite *pWrite)
{
    const FieldRow *pRow = RowOf(eField);
    EditTarget target;
    if (!pRow || !FindTarget(const_cast<PresetState *>(lppsi), place, &target))
        return false;
    const u8 *p = RecordOf(*pRow, target);
    *pWrite = WriteNumber(place, eField, 0, iElement);
    return p && ReadAt(*pRow, target, p + pRow->cbOffset, pWrite);
}

bool AcceptWrite(const EditTarget &target, FieldWrite *pWrite)
{
    const FieldRow *pRow = RowOf(pWrite->eField);
    if (!pRow || (pRow->dwFlags & KEPT) || !RecordOf(*pRow, target))
        return false;
    const bool bElement = pRow->eType == FieldType::Tile || pWrite->iElement == 0;
    const bool bWhole =
        pRow->eType == FieldType::I32 || pRow->eType == FieldType::U32 || pRow->eType == FieldType::Tile;
    // Beyond the limits of an integer control is still a number: it goes to the nearer limit.
    if (!bElement ||
        (bWhole && pRow->pfnAccept != LimitInteger && (pWrite->nValue < pRow->nMin || pWrite->nValue > pRow->nMax)))
        return false;
    return !pRow->pfnAccept || pRow->pfnAccept(target, pWrite);
}

bool CanPutBack(const EditTarget &target, const FieldWrite &write)
{
    const FieldRow *pRow = RowOf(write.eField);
    FieldWrite now = write;
    const u8 *p = pRow ? RecordOf(*pRow, target) : nullptr;
    const bool bBound = pRow && (pRow->dwFlags & KEPT) && pRow->eType == FieldType::U32; // sizes of what is allocated
    if (bBound && (write.nValue < pRow->nMin || write.nValue > pRow->nMax))
        return false;
    return p && ReadAt(*pRow, target, p + pRow->cbOffset, &now);
}

void PutBackWrite(const EditTarget &target, const FieldWrite &write)
{
    const FieldRow &row = *RowOf(write.eField);
    if (row.eField == EditField::ResetPending)
        PutBackReset(target.pms, write);
    else
        WriteAt(row, target, RecordOf(row, target) + row.cbOffset, write);
}

void RunWrite(const EditTarget &target, const FieldWrite &write)
{
    const FieldRow &row = *RowOf(write.eField);
    WriteAt(row, target, RecordOf(row, target) + row.cbOffset, write);
    if (row.pfnAfter)
        row.pfnAfter(target);
}

void KeepFields(PresetState *lppsi, const EditPlace &place, bool bFileList, std::vector<FieldWrite> *pKept)
{
    EditTarget target;
    if (!FindTarget(lppsi, place, &target))
        return;
    for (const FieldRow &row : asField)
        if (const u8 *p = RecordOf(row, target); p && (bFileList || row.eType != FieldType::List))
            KeepElements(row, target, place, p, pKept);
}

void DropUnchanged(PresetState *lppsi, const std::vector<EditPlace> &resets, std::vector<FieldWrite> *pKept)
{
    EditPlace newList = {}; // where the list has changed: setting it moves the three fields behind it as well
    std::vector<FieldWrite> changed;
    for (FieldWrite &kept : *pKept) {
        FieldWrite now;
        const bool bSame = ReadField(lppsi, kept.place, kept.eField, kept.iElement, &now) && SameValue(now, kept);
        if (kept.eField == EditField::FileList && !bSame)
            newList = kept.place;
        if (!bSame || (GoesWithList(kept.eField) && kept.place == newList) ||
            (kept.eField == EditField::ResetPending && std::binary_search(resets.begin(), resets.end(), kept.place)))
            changed.push_back(std::move(kept));
    }
    *pKept = std::move(changed);
}
