// ControlFile.cpp -- the body of a control in preset files and fragments
#include "engine/PresetFile.h"

#include "controls/ControlManager.h"
#include "controls/ControlTypes.h"
#include "controls/FileList.h"
#include "controls/FluidSources.h"
#include "platform/Text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr f32 RANGE_TOLERANCE = 0.00001f;
constexpr u32 ITEM_VALUE_END = 9999; // above every item's value
constexpr i32 WAVE_PERIOD_MIN = 400;
constexpr i32 WAVE_PERIOD_MAX = 120000;
constexpr i32 NOISE_PERIOD_MAX = 16000;

bool IsFixed(const ControlRecord *pctl)
{
    return pctl->Base.dwSource == FLUIDSOURCE_FIXED;
}

bool IsAnimated(const ControlRecord *pctl)
{
    return (pctl->Base.dwSource & FLUIDSOURCE_ANIMATED) != 0;
}

// Integer

void WriteInteger(XmlContext *pxc, const ControlRecord *pctl)
{
    const ControlInteger &Int = pctl->Integer;
    if (IsFixed(pctl)) {
        if (Int.nValue != Int.nDefaultValue)
            XmlWriteInt(pxc, u"Val", Int.nValue);
        return;
    }
    if (Int.nMin != Int.nDefaultMin)
        XmlWriteInt(pxc, u"Min", Int.nMin);
    if (Int.nMax != Int.nDefaultMax)
        XmlWriteInt(pxc, u"Max", Int.nMax);
    if (Int.bOnlyEven)
        XmlWriteInt(pxc, u"Even", Int.bOnlyEven);
    if (Int.bOnlyOdd)
        XmlWriteInt(pxc, u"Odd", Int.bOnlyOdd);
    if (Int.bMinMax)
        XmlWriteInt(pxc, u"MinMax", Int.bMinMax);
}

void ReadInteger(XmlContext *pxc, ControlRecord *pctl)
{
    ControlInteger &Int = pctl->Integer;
    XmlReadInt(pxc, u"Min", &Int.nMin);
    XmlReadInt(pxc, u"Max", &Int.nMax);
    XmlReadInt(pxc, u"Val", &Int.nValue);
    XmlReadInt(pxc, u"Even", &Int.bOnlyEven);
    XmlReadInt(pxc, u"Odd", &Int.bOnlyOdd);
    XmlReadInt(pxc, u"MinMax", &Int.bMinMax);
}

// Item select

void WriteItemSelect(XmlContext *pxc, const ControlRecord *pctl)
{
    if (pctl->ItemSelect.nCurrentItemValue != pctl->ItemSelect.nDefaultItemValue)
        XmlWriteInt(pxc, u"Index", pctl->ItemSelect.nCurrentItemValue);
}

void ReadItemSelect(XmlContext *pxc, ControlRecord *pctl)
{
    u32 nValue = 0;
    if (XmlReadInt(pxc, u"Index", &nValue) && nValue < ITEM_VALUE_END)
        pctl->ItemSelect.nCurrentItemValue = nValue;
}

// Float

// An end of the range that lies near its default is not stored.
f32 StoredRangeEnd(f32 fValue, f32 fDefault)
{
    const f32 fStored = XmlStoredFloat(fValue);
    return std::fabs(fValue - fDefault) > RANGE_TOLERANCE && std::fabs(fStored - fDefault) > RANGE_TOLERANCE ? fStored
                                                                                                             : fDefault;
}

void StoreFloat(ControlRecord *pctl)
{
    ControlFloat &Float = pctl->Float;
    Float.fValue = XmlStoredFloat(Float.fValue);
    Float.fMin = StoredRangeEnd(Float.fMin, Float.fDefaultMin);
    Float.fMax = StoredRangeEnd(Float.fMax, Float.fDefaultMax);
}

void WriteFloat(XmlContext *pxc, const ControlRecord *pctl)
{
    const ControlFloat &Float = pctl->Float;
    if (IsFixed(pctl)) {
        XmlWriteFloat(pxc, u"Val", Float.fValue);
        return;
    }
    if (Float.fMin != Float.fDefaultMin)
        XmlWriteFloat(pxc, u"Min", Float.fMin);
    if (Float.fMax != Float.fDefaultMax)
        XmlWriteFloat(pxc, u"Max", Float.fMax);
    if (Float.bMinMax)
        XmlWriteInt(pxc, u"MinMax", Float.bMinMax);
}

void ReadFloat(XmlContext *pxc, ControlRecord *pctl)
{
    ControlFloat &Float = pctl->Float;
    XmlReadFloat(pxc, u"Min", &Float.fMin);
    XmlReadFloat(pxc, u"Max", &Float.fMax);
    XmlReadFloat(pxc, u"Val", &Float.fValue);
    XmlReadInt(pxc, u"MinMax", &Float.bMinMax);
}

// Boolean

void StoreBoolean(ControlRecord *pctl)
{
    ControlBoolean &Bool = pctl->Boolean;
    Bool.fThreshold = IsAnimated(pctl) ? XmlStoredFloat(Bool.fThreshold) : Bool.fDefaultThreshold;
}

void WriteBoolean(XmlContext *pxc, const ControlRecord *pctl)
{
    if (IsAnimated(pctl))
        XmlWriteFloat(pxc, u"Threshold", pctl->Boolean.fThreshold);
    else
        XmlWriteInt(pxc, u"Val", pctl->Boolean.bState);
}

void ReadBoolean(XmlContext *pxc, ControlRecord *pctl)
{
    XmlReadInt(pxc, u"Val", &pctl->Boolean.bState);
    XmlReadFloat(pxc, u"Threshold", &pctl->Boolean.fThreshold);
}

// File select

void WriteFileSelect(XmlContext *pxc, const ControlRecord *pctl)
{
    const std::u16string_view list = pctl->FileSelect.pszFileList ? pctl->FileSelect.pszFileList : u"";
    XmlWriteInt(pxc, u"Shuffle", pctl->FileSelect.bShuffle);
    XmlWriteString(pxc, u"FileList", list.substr(0, list.find(u'<'))); // reading ends there in any case
}

void ReadFileSelect(XmlContext *pxc, ControlRecord *pctl)
{
    XmlReadInt(pxc, u"Shuffle", &pctl->FileSelect.bShuffle);
    std::u16string_view list;
    if (!XmlReadText(pxc, u"FileList", &list))
        return;
    char16_t *pszList = static_cast<char16_t *>(std::malloc((list.size() + 1) * sizeof(char16_t)));
    if (!pszList)
        return;
    std::copy(list.begin(), list.end(), pszList);
    pszList[list.size()] = 0;
    SetFileList(pctl, pszList);
}

// Tile

void WriteTile(XmlContext *pxc, const ControlRecord *pctl)
{
    const ControlTile &Tile = pctl->Tile;
    XmlWriteInt(pxc, u"XTiles", Tile.nXTiles);
    XmlWriteInt(pxc, u"YTiles", Tile.nYTiles);
    for (u32 y = 0; Tile.pTileMask && y < Tile.nYTiles; y++) {
        char16_t szRow[CONTROL_TILES_MAX];
        std::transform(Tile.pTileMask + y * Tile.nXTiles, Tile.pTileMask + (y + 1) * Tile.nXTiles, szRow,
                       [](u32 dwTile) { return dwTile ? u'1' : u'0'; });
        XmlWriteString(pxc, NumberedTag(u"TileMask", y), {szRow, Tile.nXTiles});
    }
}

void ReadTileRow(ControlTile *pTile, u32 y, std::u16string_view row)
{
    for (u32 x = 0; x < std::min<size_t>(pTile->nXTiles, row.size()); x++)
        if (row[x] == u'0' || row[x] == u'1')
            pTile->pTileMask[y * pTile->nXTiles + x] = row[x] == u'1';
}

// The sizes come inside their limits before the mask is touched.
void ReadTile(XmlContext *pxc, ControlRecord *pctl)
{
    ControlTile &Tile = pctl->Tile;
    for (const auto &[pszTag, pnTiles] : {std::pair{u"XTiles", &Tile.nXTiles}, std::pair{u"YTiles", &Tile.nYTiles}}) {
        i32 nTiles = static_cast<i32>(*pnTiles);
        XmlReadInt(pxc, pszTag, &nTiles);
        *pnTiles = static_cast<u32>(std::clamp(nTiles, 1, CONTROL_TILES_MAX));
    }
    for (u32 y = 0; Tile.pTileMask && y < Tile.nYTiles; y++) {
        char16_t szRow[CONTROL_TILES_MAX + 1];
        if (XmlReadString(pxc, NumberedTag(u"TileMask", y), szRow))
            ReadTileRow(&Tile, y, szRow);
    }
}

struct FileSteps {
    u32 dwType;
    void (*pfnWrite)(XmlContext *pxc, const ControlRecord *pctl) = nullptr;
    void (*pfnRead)(XmlContext *pxc, ControlRecord *pctl) = nullptr;
    void (*pfnStore)(ControlRecord *pctl) = nullptr; // part of StoredForm; null: nothing
};

constexpr ControlTypeTable<FileSteps> asSteps({
    {CONTROLTYPE_UNDEFINED},
    {CONTROLTYPE_GROUP},
    {CONTROLTYPE_INTEGER, WriteInteger, ReadInteger},
    {CONTROLTYPE_ITEMSELECT, WriteItemSelect, ReadItemSelect},
    {CONTROLTYPE_FLOAT, WriteFloat, ReadFloat, StoreFloat},
    {CONTROLTYPE_BOOLEAN, WriteBoolean, ReadBoolean, StoreBoolean},
    {CONTROLTYPE_FILESELECT, WriteFileSelect, ReadFileSelect},
    {CONTROLTYPE_TILE, WriteTile, ReadTile},
});
static_assert(asSteps.EveryValueHas(&FileSteps::pfnWrite) && asSteps.EveryValueHas(&FileSteps::pfnRead));

const FileSteps &StepsOf(const ControlRecord *pctl)
{
    return asSteps[pctl->Base.dwType];
}

void WriteSource(XmlContext *pxc, const ControlBase &Base)
{
    XmlWriteInt(pxc, u"Source", Base.dwSource);
    if (Base.dwSource == FLUIDSOURCE_SOUND)
        XmlWriteInt(pxc, u"Samples", Base.nSamples);
    if (Base.dwSource == FLUIDSOURCE_WAVE) {
        XmlWriteInt(pxc, u"WaveType", Base.dwWaveType);
        XmlWriteInt(pxc, u"WavePeriod", Base.nWavePeriod);
        XmlWriteInt(pxc, u"RandomPhase", Base.bRandomPhase);
        if (!Base.bRandomPhase)
            XmlWriteFloat(pxc, u"WavePhase", Base.fWavePhase);
    }
    if (Base.dwSource == FLUIDSOURCE_PERIODIC)
        XmlWriteInt(pxc, u"NoisePeriod", Base.nNoisePeriod);
}

// The control as loading it would give it back: inside its limits, what its source does not use is not stored and
// stands at its default, floats have six decimals. Written from this, a file that is loaded and saved again stays the
// same to the byte. What the copy points to is the record's.
ControlRecord StoredForm(const ControlRecord &Control)
{
    ControlRecord ctl = Control;
    ClampControl(&ctl);
    ControlBase &Base = ctl.Base;
    if (Base.dwSource != FLUIDSOURCE_SOUND)
        Base.nSamples = Base.nDefaultSamples;
    if (Base.dwSource != FLUIDSOURCE_PERIODIC)
        Base.nNoisePeriod = Base.nDefaultNoisePeriod;
    if (Base.dwSource != FLUIDSOURCE_WAVE) {
        Base.nWavePeriod = Base.nDefaultWavePeriod;
        Base.dwWaveType = Base.dwDefaultWaveType;
    }
    Base.fWavePhase = XmlStoredFloat(Base.fWavePhase);
    if (StepsOf(&ctl).pfnStore)
        StepsOf(&ctl).pfnStore(&ctl);
    return ctl;
}

// A number in its documented range; the module's own default always counts as one.
void ReadLimited(XmlContext *pxc, const char16_t *pszTag, i32 nMin, i32 nMax, u32 dwDefault, u32 *pdwValue)
{
    i32 nValue = 0;
    if (!XmlReadInt(pxc, pszTag, &nValue))
        return;
    const u32 dwValue = static_cast<u32>(nValue);
    *pdwValue = dwValue == dwDefault ? dwValue : static_cast<u32>(std::clamp(nValue, nMin, nMax));
}

void ReadAnimation(XmlContext *pxc, ControlBase *pBase)
{
    i32 nValue = 0;
    ReadLimited(pxc, u"Samples", 0, SOUND_HISTORY, pBase->nDefaultSamples, &pBase->nSamples);
    if (XmlReadInt(pxc, u"WaveType", &nValue) && nValue >= WAVETYPE_SINE && nValue <= WAVETYPE_RAMP)
        pBase->dwWaveType = static_cast<u32>(nValue);
    XmlReadInt(pxc, u"RandomPhase", &pBase->bRandomPhase);
    if (XmlReadFloat(pxc, u"WavePhase", &pBase->fWavePhase))
        pBase->fWavePhase = std::clamp(pBase->fWavePhase, 0.0f, 1.0f);
    ReadLimited(pxc, u"WavePeriod", WAVE_PERIOD_MIN, WAVE_PERIOD_MAX, pBase->nDefaultWavePeriod, &pBase->nWavePeriod);
    if (XmlReadInt(pxc, u"WavePeriod", &nValue) && nValue == static_cast<i32>(DURATION_NEVER))
        pBase->nWavePeriod = DURATION_NEVER; // below the range, and stands still
    ReadLimited(pxc, u"NoisePeriod", 0, NOISE_PERIOD_MAX, pBase->nDefaultNoisePeriod, &pBase->nNoisePeriod);
}

bool IsOneSource(u32 dwSource)
{
    constexpr u32 dwAll = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED;
    return dwSource && (dwSource & dwAll) == dwSource && (dwSource & (dwSource - 1)) == 0;
}

void ReadFields(XmlContext *pxc, ControlRecord *pctl, const NameText &szName, PresetReport *pReport)
{
    u32 dwSource = pctl->Base.dwSource;
    if (XmlReadInt(pxc, u"Source", &dwSource) && dwSource != pctl->Base.dwSource && !IsOneSource(dwSource)) {
        AddToReport(pReport, "control " + ToUtf8(szName) + ": no source has the number " + std::to_string(dwSource));
        dwSource = pctl->Base.dwSource;
    }
    pctl->Base.dwSource = dwSource;
    if (IsAnimated(pctl))
        ReadAnimation(pxc, &pctl->Base);
    if (StepsOf(pctl).pfnRead)
        StepsOf(pctl).pfnRead(pxc, pctl);
}

} // namespace

void WriteControl(XmlContext *pxc, ControlRecord *pctl)
{
    NameText szName;
    ControlDottedName(pctl, szName);
    ClampControl(pctl);
    const ControlRecord ctl = StoredForm(*pctl);
    XmlWriteString(pxc, u"Name", szName);
    WriteSource(pxc, ctl.Base);
    if (StepsOf(&ctl).pfnWrite)
        StepsOf(&ctl).pfnWrite(pxc, &ctl);
}

bool ControlIsStored(const ControlRecord *pctl)
{
    if (ControlIsDefault(pctl))
        return false;
    const ControlRecord ctl = StoredForm(*pctl);
    return !ControlIsDefault(&ctl);
}

u32 ReadControl(XmlContext *pxc, ControlRecord *pctl, u32 bClamp, PresetReport *pReport)
{
    NameText szStored = u"", szName;
    ControlDottedName(pctl, szName);
    const u32 bMatches = XmlReadString(pxc, u"Name", szStored) && EqualNoCase(szStored, szName);
    if (bMatches)
        ReadFields(pxc, pctl, szName, pReport);
    XmlLeaveTag(pxc);
    if (bMatches && bClamp)
        ClampControl(pctl);
    return bMatches;
}
