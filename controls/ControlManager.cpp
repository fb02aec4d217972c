// ControlManager.cpp -- the control record: building, ownership, limits, comparison with the defaults
#include "controls/ControlManager.h"

#include "controls/ControlTypes.h"
#include "controls/HostControl.h"
#include "platform/Assert.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

std::atomic<u32> bPresetChanged{0};
i32 nControlsShown = 0;

namespace {

constexpr u32 TILES = CONTROL_TILES_MAX * CONTROL_TILES_MAX;
constexpr f32 PHASE_TOLERANCE = 0.00001f;

// The slot under construction and the only count of its controls that is believed. One per thread, so that a module's
// worker that calls back finds nothing to append to.
struct SlotBuild {
    ModuleSlot *pms;
    i32 nControls;
};
thread_local SlotBuild Build;

// The upper limit wins where a module has them the wrong way round.
template <typename T> void Limit(T *pValue, T low, T high)
{
    if (*pValue < low || *pValue != *pValue)
        *pValue = low;
    if (*pValue > high)
        *pValue = high;
}

// Integer

void ClampInteger(ControlRecord *pctl)
{
    ControlInteger &Int = pctl->Integer;
    for (i32 *pn : {&Int.nMin, &Int.nMax, &Int.nValue})
        Limit(pn, Int.nAbsMin, Int.nAbsMax);
}

bool IntegerIsDefault(const ControlRecord *pctl, bool bFixed)
{
    const ControlInteger &Int = pctl->Integer;
    if (bFixed)
        return Int.nValue == Int.nDefaultValue;
    return !Int.bOnlyEven && !Int.bOnlyOdd && !Int.bMinMax && Int.nMin == Int.nDefaultMin &&
           Int.nMax == Int.nDefaultMax;
}

void RestoreInteger(ControlRecord *pctl)
{
    ControlInteger &Int = pctl->Integer;
    Int.nMin = Int.nDefaultMin;
    Int.nMax = Int.nDefaultMax;
    Int.nValue = Int.nDefaultValue;
    Int.bOnlyEven = Int.bOnlyOdd = Int.bMinMax = 0;
}

// Float

void ClampFloat(ControlRecord *pctl)
{
    ControlFloat &Float = pctl->Float;
    for (f32 *pf : {&Float.fMin, &Float.fMax, &Float.fValue})
        Limit(pf, Float.fAbsMin, Float.fAbsMax);
}

bool FloatIsDefault(const ControlRecord *pctl, bool bFixed)
{
    const ControlFloat &Float = pctl->Float;
    if (bFixed)
        return Float.fValue == Float.fDefaultValue;
    return !Float.bMinMax && Float.fMin == Float.fDefaultMin && Float.fMax == Float.fDefaultMax;
}

void RestoreFloat(ControlRecord *pctl)
{
    ControlFloat &Float = pctl->Float;
    Float.fMin = Float.fDefaultMin;
    Float.fMax = Float.fDefaultMax;
    Float.fValue = Float.fDefaultValue;
    Float.bMinMax = 0;
}

// Item select

bool ItemSelectIsDefault(const ControlRecord *pctl, bool bFixed)
{
    return !bFixed || pctl->ItemSelect.nCurrentItemValue == pctl->ItemSelect.nDefaultItemValue;
}

void RestoreItemSelect(ControlRecord *pctl)
{
    pctl->ItemSelect.nCurrentItemValue = pctl->ItemSelect.nDefaultItemValue;
}

// Boolean

void ClampBoolean(ControlRecord *pctl)
{
    Limit(&pctl->Boolean.fThreshold, 0.0f, 1.0f);
}

bool BooleanIsDefault(const ControlRecord *pctl, bool bFixed)
{
    const ControlBoolean &Bool = pctl->Boolean;
    return bFixed ? Bool.bState == Bool.bDefaultState : Bool.fThreshold == Bool.fDefaultThreshold;
}

void RestoreBoolean(ControlRecord *pctl)
{
    pctl->Boolean.bState = pctl->Boolean.bDefaultState;
    pctl->Boolean.fThreshold = pctl->Boolean.fDefaultThreshold;
}

// File select

bool FileSelectIsDefault(const ControlRecord *pctl, bool)
{
    return !pctl->FileSelect.pszFileList;
}

void RestoreFileSelect(ControlRecord *pctl)
{
    pctl->FileSelect.bShuffle = 0;
}

// Tile

void FillTileMask(ControlRecord *pctl)
{
    if (pctl->Tile.pTileMask)
        std::fill_n(pctl->Tile.pTileMask, TILES, 1u);
}

void ClampTile(ControlRecord *pctl)
{
    ControlTile &Tile = pctl->Tile;
    for (u32 *pn : {&Tile.nXTiles, &Tile.nYTiles, &Tile.nXLimit, &Tile.nYLimit})
        Limit(pn, 1u, u32{CONTROL_TILES_MAX});
}

bool TileIsDefault(const ControlRecord *pctl, bool)
{
    const ControlTile &Tile = pctl->Tile;
    const u32 nTiles = static_cast<u32>(std::min<u64>(u64{Tile.nXTiles} * Tile.nYTiles, TILES));
    return !Tile.pTileMask || std::all_of(Tile.pTileMask, Tile.pTileMask + nTiles, [](u32 dw) { return dw == 1; });
}

void RestoreTile(ControlRecord *pctl)
{
    pctl->Tile.nXLimit = pctl->Tile.nYLimit = CONTROL_TILES_MAX;
    FillTileMask(pctl);
}

// What a control type does. Null: nothing.
struct TypeSteps {
    u32 dwType;
    void (*pfnClamp)(ControlRecord *pctl) = nullptr;
    bool (*pfnIsDefault)(const ControlRecord *pctl, bool bFixed) = nullptr;
    void (*pfnRestore)(ControlRecord *pctl) = nullptr;
};

constexpr ControlTypeTable<TypeSteps> asSteps({
    {CONTROLTYPE_UNDEFINED},
    {CONTROLTYPE_GROUP},
    {CONTROLTYPE_INTEGER, ClampInteger, IntegerIsDefault, RestoreInteger},
    {CONTROLTYPE_ITEMSELECT, nullptr, ItemSelectIsDefault, RestoreItemSelect},
    {CONTROLTYPE_FLOAT, ClampFloat, FloatIsDefault, RestoreFloat},
    {CONTROLTYPE_BOOLEAN, ClampBoolean, BooleanIsDefault, RestoreBoolean},
    {CONTROLTYPE_FILESELECT, nullptr, FileSelectIsDefault, RestoreFileSelect},
    {CONTROLTYPE_TILE, ClampTile, TileIsDefault, RestoreTile},
});
static_assert(asSteps.EveryValueHas(&TypeSteps::pfnIsDefault) && asSteps.EveryValueHas(&TypeSteps::pfnRestore));

const TypeSteps &StepsOf(const ControlRecord *pctl)
{
    return asSteps[pctl->Base.dwType];
}

void RunTypeStep(ControlRecord *pctl, void (*TypeSteps::*ppfnStep)(ControlRecord *))
{
    if (StepsOf(pctl).*ppfnStep)
        (StepsOf(pctl).*ppfnStep)(pctl);
}

bool SourceIsDefault(const ControlBase &Base)
{
    return Base.dwSource == Base.dwDefaultSource && Base.nNoisePeriod == Base.nDefaultNoisePeriod &&
           Base.nSamples == Base.nDefaultSamples && Base.nWavePeriod == Base.nDefaultWavePeriod &&
           Base.dwWaveType == Base.dwDefaultWaveType;
}

// A phase that the next reset draws anew is nothing to keep.
bool PhaseIsDefault(const ControlBase &Base)
{
    if (Base.dwSource != FLUIDSOURCE_WAVE)
        return true;
    if (Base.bRandomPhase != Base.bDefaultRandomPhase)
        return false;
    return Base.bRandomPhase || !(std::fabs(Base.fWavePhase - Base.fDefaultWavePhase) > PHASE_TOLERANCE);
}

} // namespace

void SetControlDefaults(ControlRecord *pctl)
{
    ControlBase &Base = pctl->Base;
    Base.dwReserved1 = 1;
    Base.dwDefaultSource = Base.dwSource = FLUIDSOURCE_FIXED;
    Base.nDefaultWavePeriod = Base.nWavePeriod = 8000;
    Base.bDefaultRandomPhase = Base.bRandomPhase = 1;
    Base.nDefaultNoisePeriod = Base.nNoisePeriod = 1500;
    CopyText(Base.szDescription, u"This is a text string.");
}

void BeginControls(ModuleSlot *pms)
{
    ASSERT_MAIN_THREAD();
    Build = {pms, 0};
    pms->nControls = nControlsShown = 0;
}

ControlRecord *AllocControl(i32 *)
{
    if (!Build.pms || Build.nControls >= CONTROLS_MAX)
        return nullptr;
    ControlRecord *pctl = NewControl();
    if (!pctl)
        return nullptr;
    Build.pms->apControl[Build.nControls++] = pctl;
    Build.pms->nControls = nControlsShown = Build.nControls;
    return pctl;
}

void EndControls(ModuleSlot *pms)
{
    ASSERT_MAIN_THREAD();
    VD_ASSERT(Build.pms == pms);
    pms->nControls = Build.nControls;
    Build = {};
    for (i32 i = 0; i < pms->nControls; i++)
        TakeOverControl(pms, pms->apControl[i]);
}

bool ControlSupportsFluidSources(const ControlRecord *pctl)
{
    return TypeOf(pctl).bFollowsSources && (pctl->Base.dwSourceMask & FLUIDSOURCE_ANIMATED);
}

void ClampControl(ControlRecord *pctl)
{
    RunTypeStep(pctl, &TypeSteps::pfnClamp);
}

bool ControlIsDefault(const ControlRecord *pctl)
{
    const TypeSteps &Steps = StepsOf(pctl);
    if (!Steps.pfnIsDefault)
        return true;
    return SourceIsDefault(pctl->Base) && PhaseIsDefault(pctl->Base) &&
           Steps.pfnIsDefault(pctl, pctl->Base.dwSource == FLUIDSOURCE_FIXED);
}

i32 CountChangedControls(const ModuleSlot *pms)
{
    i32 nChanged = 0;
    for (u32 i = 0; i < CONTROLS_MAX && pms->apControl[i]; i++)
        nChanged += !ControlIsDefault(pms->apControl[i]);
    return nChanged;
}

void RestoreControlDefaults(ControlRecord *pctl)
{
    ControlBase &Base = pctl->Base;
    Base.dwSource = Base.dwDefaultSource;
    Base.nNoisePeriod = Base.nDefaultNoisePeriod;
    Base.nSamples = Base.nDefaultSamples;
    Base.nWavePeriod = Base.nDefaultWavePeriod;
    Base.dwWaveType = Base.dwDefaultWaveType;
    RunTypeStep(pctl, &TypeSteps::pfnRestore);
}
