// EditFields.cpp -- reads, limits and writes fields by their rows
#include "editing/EditFields.h"

#include "controls/ControlManager.h"
#include "editing/EditFieldRows.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

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

bool InLimits(const FieldRow &row, const FieldWrite &write)
{
    return write.nValue >= row.nMin && write.nValue <= row.nMax;
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

bool WriteResets(const EditTarget &target, EditField eField)
{
    if (!target.pms || !(FieldRowOf(eField)->dwFlags & RESETS))
        return false;
    return !target.pctl || !ControlSupportsFluidSources(target.pctl);
}

bool ReadField(const PresetState *lppsi, const EditPlace &place, EditField eField, u32 iElement, FieldWrite *pWrite)
{
    const FieldRow *pRow = FieldRowOf(eField);
    EditTarget target;
    if (!pRow || !FindTarget(const_cast<PresetState *>(lppsi), place, &target))
        return false;
    const u8 *p = RecordOf(*pRow, target);
    *pWrite = WriteNumber(place, eField, 0, iElement);
    return p && ReadAt(*pRow, target, p + pRow->cbOffset, pWrite);
}

bool AcceptWrite(const EditTarget &target, FieldWrite *pWrite)
{
    const FieldRow *pRow = FieldRowOf(pWrite->eField);
    if (!pRow || (pRow->dwFlags & KEPT) || !RecordOf(*pRow, target))
        return false;
    const bool bElement = pRow->eType == FieldType::Tile || pWrite->iElement == 0;
    const bool bWhole =
        pRow->eType == FieldType::I32 || pRow->eType == FieldType::U32 || pRow->eType == FieldType::Tile;
    if (!bElement || (bWhole && !(pRow->dwFlags & NEAREST) && !InLimits(*pRow, *pWrite)))
        return false;
    return !pRow->pfnAccept || pRow->pfnAccept(target, pWrite);
}

bool CanPutBack(const EditTarget &target, const FieldWrite &write)
{
    const FieldRow *pRow = FieldRowOf(write.eField);
    FieldWrite now = write;
    const u8 *p = pRow ? RecordOf(*pRow, target) : nullptr;
    const bool bBound = pRow && (pRow->dwFlags & KEPT) && pRow->eType == FieldType::U32; // sizes of what is allocated
    if (bBound && !InLimits(*pRow, write))
        return false;
    return p && ReadAt(*pRow, target, p + pRow->cbOffset, &now);
}

void PutBackWrite(const EditTarget &target, const FieldWrite &write)
{
    const FieldRow &row = *FieldRowOf(write.eField);
    if (row.eField == EditField::ResetPending)
        PutBackReset(target.pms, write);
    else
        WriteAt(row, target, RecordOf(row, target) + row.cbOffset, write);
}

void RunWrite(const EditTarget &target, const FieldWrite &write)
{
    const FieldRow &row = *FieldRowOf(write.eField);
    WriteAt(row, target, RecordOf(row, target) + row.cbOffset, write);
    if (row.pfnAfter)
        row.pfnAfter(target);
}

void KeepFields(PresetState *lppsi, const EditPlace &place, bool bFileList, std::vector<FieldWrite> *pKept)
{
    EditTarget target;
    if (!FindTarget(lppsi, place, &target))
        return;
    for (const FieldRow &row : FieldRows())
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
