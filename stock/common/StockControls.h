// StockControls.h -- what the stock modules share: controls in one line each, limited reads, chance, time
//
// For module libraries only; include/module.h is all that it needs. A module keeps the records that the Add
// functions return and reads them through the Read functions. Each of these takes null (the host had no record
// left to give) and answers 0 then. All functions: the thread rules of module.h.
#ifndef VORTICADE_STOCK_CONTROLS_H
#define VORTICADE_STOCK_CONTROLS_H

#include "module.h"

#include <cstring>
#include <string_view>

#define STOCK_BUILD u"1.0"
#define STOCK_SOURCES_ALL (FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED)

// Copies a text into a text field, cut to fit. A literal's own parts, as in u"Outer\0Inner\0", stay in it.
template <size_t nField, size_t nText> inline void SetText(char16_t (&szField)[nField], const char16_t (&szText)[nText])
{
    const size_t nCopied = nText < nField - 1 ? nText : nField - 2; // two 0s end a list of parts
    memset(szField, 0, sizeof szField);
    memcpy(szField, szText, nCopied * sizeof(char16_t));
}

template <size_t nName, size_t nText>
inline void DescribeModule(ModuleDescription *pmd, uint32_t dwClass, uint32_t dwCapabilities,
                           const char16_t (&szName)[nName], const char16_t (&szDescription)[nText])
{
    pmd->dwClass = dwClass;
    pmd->dwCapabilities = dwCapabilities;
    SetText(pmd->szName, szName);
    SetText(pmd->szDescription, szDescription);
    SetText(pmd->szBuild, STOCK_BUILD);
}

// ---- Declaring controls

// Where the records come from: the last two arguments of ModuleBuildControlStructure.
struct ControlMaker {
    AllocControlFn pfnAllocControl;
    int32_t *pnControls;
};

// The default source of a control with its parameters; 0 leaves a parameter at the host's default.
struct FluidDefault {
    uint32_t dwSource;     // one FLUIDSOURCE_* bit
    uint32_t nPeriodMs;    // of the wave or of the periodic draws
    uint32_t dwWaveType;   // WAVETYPE_*
    uint32_t nSamples;     // smoothing of the sound, 0 (nervous) to 44 (calm)
    uint32_t dwSourceMask; // sources offered; 0: all that the type allows
};

inline FluidDefault FromFixed()
{
    return {FLUIDSOURCE_FIXED, 0, 0, 0, 0};
}
inline FluidDefault FromRandom()
{
    return {FLUIDSOURCE_RANDOM, 0, 0, 0, 0};
}
inline FluidDefault FromWave(uint32_t nPeriodMs, uint32_t dwWaveType = WAVETYPE_SINE)
{
    return {FLUIDSOURCE_WAVE, nPeriodMs, dwWaveType, 0, 0};
}
inline FluidDefault FromSound(uint32_t nSamples)
{
    return {FLUIDSOURCE_SOUND, 0, 0, nSamples, 0};
}
inline FluidDefault FromPeriodic(uint32_t nPeriodMs)
{
    return {FLUIDSOURCE_PERIODIC, nPeriodMs, 0, 0, 0};
}

// Fills the head, both halves alike.
inline void SetFluidDefault(ControlBase *pBase, const FluidDefault &fd, uint32_t dwSourcesOfType)
{
    pBase->dwSourceMask = fd.dwSourceMask ? fd.dwSourceMask & dwSourcesOfType : dwSourcesOfType;
    pBase->dwDefaultSource = pBase->dwSource = fd.dwSource;
    pBase->dwDefaultWaveType = pBase->dwWaveType = fd.dwWaveType;
    pBase->nDefaultSamples = pBase->nSamples = fd.nSamples;
    if (fd.nPeriodMs && fd.dwSource == FLUIDSOURCE_WAVE)
        pBase->nDefaultWavePeriod = pBase->nWavePeriod = fd.nPeriodMs;
    if (fd.nPeriodMs && fd.dwSource == FLUIDSOURCE_PERIODIC)
        pBase->nDefaultNoisePeriod = pBase->nNoisePeriod = fd.nPeriodMs;
}

template <size_t nName, size_t nText>
inline ControlRecord *AddControl(const ControlMaker &maker, uint32_t dwType, const char16_t (&szName)[nName],
                                 const char16_t (&szDescription)[nText], const FluidDefault &fd, uint32_t dwSources)
{
    ControlRecord *pctl = maker.pfnAllocControl(maker.pnControls);
    if (!pctl)
        return nullptr;
    pctl->Base.dwType = dwType;
    SetText(pctl->Base.szName, szName);
    SetText(pctl->Base.szDescription, szDescription);
    SetFluidDefault(&pctl->Base, fd, dwSources);
    return pctl;
}

struct FloatRange {
    float fLow, fHigh;
};
struct IntegerRange {
    int32_t nLow, nHigh;
};

// range: what the animated sources sweep by default. fValue: the value under a fixed source.
template <size_t nName, size_t nText>
inline ControlRecord *AddFloat(const ControlMaker &maker, const char16_t (&szName)[nName],
                               const char16_t (&szDescription)[nText], FloatRange absolute, FloatRange range,
                               float fValue, const FluidDefault &fd)
{
    ControlRecord *pctl = AddControl(maker, CONTROLTYPE_FLOAT, szName, szDescription, fd, STOCK_SOURCES_ALL);
    if (pctl)
        pctl->Float = {absolute.fLow, absolute.fHigh, range.fLow, range.fHigh, range.fLow, range.fHigh,
                       fValue,        fValue,         0};
    return pctl;
}

template <size_t nName, size_t nText>
inline ControlRecord *AddInteger(const ControlMaker &maker, const char16_t (&szName)[nName],
                                 const char16_t (&szDescription)[nText], IntegerRange absolute, IntegerRange range,
                                 int32_t nValue, const FluidDefault &fd)
{
    ControlRecord *pctl = AddControl(maker, CONTROLTYPE_INTEGER, szName, szDescription, fd, STOCK_SOURCES_ALL);
    if (pctl)
        pctl->Integer = {absolute.nLow, absolute.nHigh, range.nLow, range.nHigh, range.nLow, range.nHigh,
                         nValue,        nValue,         0,          0,           0};
    return pctl;
}

// fThreshold: an animated unit value above it switches on.
template <size_t nName, size_t nText>
inline ControlRecord *AddBoolean(const ControlMaker &maker, const char16_t (&szName)[nName],
                                 const char16_t (&szDescription)[nText], float fThreshold, bool bState,
                                 const FluidDefault &fd)
{
    ControlRecord *pctl = AddControl(maker, CONTROLTYPE_BOOLEAN, szName, szDescription, fd, STOCK_SOURCES_ALL);
    if (pctl)
        pctl->Boolean = {fThreshold, fThreshold, bState, bState};
    return pctl;
}

// pItems: a block of the instance, kept until ModuleDestroyControlStructure. Row i gets the text aszText[i] and
// the value i. fd: fixed or random.
template <size_t nName, size_t nText, size_t nItems>
inline ControlRecord *AddItemSelect(const ControlMaker &maker, const char16_t (&szName)[nName],
                                    const char16_t (&szDescription)[nText], ItemSelectRow (&aItems)[nItems],
                                    const char16_t *const (&aszText)[nItems], uint32_t dwValue, const FluidDefault &fd)
{
    for (uint32_t i = 0; i < nItems; i++)
        aItems[i] = {aszText[i], i, 0};
    ControlRecord *pctl =
        AddControl(maker, CONTROLTYPE_ITEMSELECT, szName, szDescription, fd, FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM);
    if (pctl)
        pctl->ItemSelect = {nItems, dwValue, dwValue, 0, aItems};
    return pctl;
}

// A group that is asked for before its first control has a help text of its own; else it shows that control's.
template <size_t nName, size_t nText>
inline ControlRecord *AddGroup(const ControlMaker &maker, const char16_t (&szName)[nName],
                               const char16_t (&szDescription)[nText])
{
    return AddControl(maker, CONTROLTYPE_GROUP, szName, szDescription, FromFixed(), FLUIDSOURCE_FIXED);
}

// pszFileType: what the list holds, see ControlFileSelect; a text that outlives the instance.
template <size_t nName, size_t nText>
inline ControlRecord *AddFileSelect(const ControlMaker &maker, const char16_t (&szName)[nName],
                                    const char16_t (&szDescription)[nText], const char16_t *pszFileType)
{
    ControlRecord *pctl =
        AddControl(maker, CONTROLTYPE_FILESELECT, szName, szDescription, FromFixed(), FLUIDSOURCE_FIXED);
    if (pctl)
        pctl->FileSelect.pszFileType = pszFileType;
    return pctl;
}

// pctl shows as active only while pOn compares so with the comparand (fComparand for a float).
inline void SetDependsOn(ControlRecord *pctl, ControlRecord *pOn, uint32_t dwDependOp, float fComparand)
{
    if (!pctl || !pOn)
        return;
    pOn->Base.bHasDependents = 1;
    pctl->Base.pDependsOn = pOn;
    pctl->Base.dwDependOp = dwDependOp;
    pctl->Base.fDependValue = fComparand;
    pctl->Base.nDependValue = (int32_t)fComparand;
}

// The wave starts at no random phase: it is in step with every other wave of this period, on all planes.
inline void SetWaveInStep(ControlRecord *pctl)
{
    if (pctl)
        pctl->Base.bDefaultRandomPhase = pctl->Base.bRandomPhase = 0;
}

// ---- Reading controls: always inside the absolute range, whatever a sound level or a file put there

inline float ReadFloat(const ControlRecord *pctl)
{
    if (!pctl)
        return 0;
    const ControlFloat &f = pctl->Float;
    if (!(f.fValue > f.fAbsMin)) // also what is no number
        return f.fAbsMin;
    return f.fValue < f.fAbsMax ? f.fValue : f.fAbsMax;
}

inline int32_t ReadInteger(const ControlRecord *pctl)
{
    if (!pctl)
        return 0;
    const ControlInteger &n = pctl->Integer;
    return n.nValue < n.nAbsMin ? n.nAbsMin : n.nValue > n.nAbsMax ? n.nAbsMax : n.nValue;
}

inline bool ReadBoolean(const ControlRecord *pctl)
{
    return pctl && pctl->Boolean.bState;
}

// The chosen row of a control made by AddItemSelect; the default row if a file holds a number of none.
inline uint32_t ReadItem(const ControlRecord *pctl)
{
    if (!pctl)
        return 0;
    const ControlItemSelect &item = pctl->ItemSelect;
    return item.nCurrentItemValue < item.nItems ? item.nCurrentItemValue : item.nDefaultItemValue;
}

// The file of the moment; empty if there is none.
inline std::u16string_view ReadFileName(const ControlRecord *pctl)
{
    if (!pctl)
        return {};
    const std::u16string_view field(pctl->FileSelect.szCurrentFile, CONTROL_TEXT);
    return field.substr(0, field.find(u'\0'));
}

// ---- Chance: the splitmix64 sequence (Steele, Lea, Flood), the same on every machine

struct StockRandom {
    uint64_t qwState; // seed it from ppi->hdc->qwSeed
};

inline uint64_t NextRandom(StockRandom *pRandom)
{
    uint64_t z = pRandom->qwState += 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

// 0 to nCount - 1; 0 for a count of 0.
inline uint32_t RandomBelow(StockRandom *pRandom, uint32_t nCount)
{
    return (uint32_t)(((NextRandom(pRandom) >> 32) * nCount) >> 32);
}

// 0 to below 1.
inline float RandomUnit(StockRandom *pRandom)
{
    return (float)(NextRandom(pRandom) >> 40) * 0x1p-24f;
}

inline float RandomBetween(StockRandom *pRandom, float fLow, float fHigh)
{
    return fLow + (fHigh - fLow) * RandomUnit(pRandom);
}

// ---- Time

inline uint32_t ReadTimeScale(const PlaneInfo *ppi)
{
    return ppi->dwTimeScale < 1 ? 1 : ppi->dwTimeScale > 100 ? 100 : ppi->dwTimeScale;
}

struct StockClock {
    uint64_t qwLastTick; // zero the record in ModuleInitialize to start anew
    bool bStarted;
};

// Milliseconds since the last call, 0 at the first one and when the tick went back; after a pause of any length
// no more than nMostMs, so that nothing leaps.
inline uint32_t ElapsedMs(StockClock *pClock, uint64_t qwTick, uint32_t nMostMs)
{
    const uint64_t qwElapsed = pClock->bStarted && qwTick > pClock->qwLastTick ? qwTick - pClock->qwLastTick : 0;
    *pClock = {qwTick, true};
    return (uint32_t)(qwElapsed < nMostMs ? qwElapsed : nMostMs);
}

#endif
