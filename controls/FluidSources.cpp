// FluidSources.cpp -- the evaluation of controls: fixed, random, wave, sound, periodic
#include "controls/FluidSources.h"

#include "controls/ControlTypes.h"
#include "controls/FileList.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Random.h"
#include "state/GlobalSettings.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>

namespace {

constexpr f32 UNIT_PER_WORD = 2.3283064e-10f; // 2 to the power -32
constexpr f32 SINE_TURN = 6.28f;              // not 2 pi: the seam of a period shows in old presets as it always did
constexpr f32 SQUARE_LOW = 0.0000001f;        // above a threshold of 0
constexpr f32 UNKNOWN_WAVE = 0.01f;
constexpr u64 HISTORY_STEP_MS = 10;

// Written on the main thread only. Atomic because a plane that missed its frame's time limit may still be reading.
std::atomic<f32> afSoundHistory[SOUND_HISTORY];
u64 qwSoundHistoryTick; // [main-thread]

// What one evaluation needs to know besides the record.
struct Evaluation {
    u64 qwTick;
    bool bReset;
};

u64 TimeScale()
{
    return std::max(GlobalSettings.TimeScale, 1u);
}

f32 FrameSoundLevel()
{
    const SoundFrame *pSound = GlobalSettings.pSound;
    return pSound && std::isfinite(pSound->fRawLevel) ? pSound->fRawLevel : 0.0f;
}

// Conversions of numbers that files and modules decide: defined for all of them.
u64 TruncateUnsigned(f32 f)
{
    return f >= 0.0f && f < 18446744073709551616.0f ? static_cast<u64>(f) : 0;
}

i32 TruncateSigned(f32 f, i32 nIfNoNumber)
{
    if (std::isnan(f))
        return nIfNoNumber;
    if (f >= 2147483648.0f)
        return std::numeric_limits<i32>::max();
    return f <= -2147483648.0f ? std::numeric_limits<i32>::min() : static_cast<i32>(f);
}

// Waves. t is the tick with the phase added; the period is not 0.

f32 PartOfPeriod(u64 t, u32 nPeriod)
{
    return static_cast<f32>(static_cast<i64>(t % nPeriod)) / static_cast<f32>(nPeriod);
}

f32 SineWave(u64 t, u32 nPeriod)
{
    return std::sin(PartOfPeriod(t, nPeriod) * SINE_TURN) * 0.5f + 0.5f;
}

f32 TriangleWave(u64 t, u32 nPeriod)
{
    const i64 n = nPeriod;
    const i64 q = static_cast<i64>((nPeriod / 4 + t) % nPeriod);
    return static_cast<f32>(n - std::abs(2 * q - n)) / static_cast<f32>(nPeriod);
}

f32 SquareWave(u64 t, u32 nPeriod)
{
    return t % nPeriod >= nPeriod / 2 ? 1.0f : SQUARE_LOW;
}

f32 RampWave(u64 t, u32 nPeriod)
{
    return 1.0f - PartOfPeriod(t, nPeriod);
}

constexpr f32 (*apfnWave[])(u64 t, u32 nPeriod) = {SineWave, TriangleWave, SquareWave, RampWave};
static_assert(std::size(apfnWave) == WAVETYPE_RAMP + 1);

// Sources.

bool SourceIsRandom(const ControlBase &Base)
{
    return Base.dwSource == FLUIDSOURCE_RANDOM || Base.dwSource == FLUIDSOURCE_PERIODIC;
}

// A noise period of DURATION_NEVER is a plain period like its neighbours: the slider passes over it, and a number
// that froze or raced there alone would surprise.
bool NoiseIsDue(ControlBase *pBase, u64 qwTick)
{
    if (pBase->dwSource != FLUIDSOURCE_PERIODIC || pBase->qwNextNoiseTick >= qwTick)
        return false;
    pBase->qwNextNoiseTick = qwTick + pBase->nNoisePeriod * TimeScale();
    return true;
}

// The unit number that the source gives now; false when it gives none.
bool TakeUnit(ControlRecord *pctl, const Evaluation &now, f32 *pfUnit)
{
    ControlBase &Base = pctl->Base;
    switch (Base.dwSource) {
    case FLUIDSOURCE_RANDOM:
    case FLUIDSOURCE_PERIODIC:
        if (now.bReset)
            *pfUnit = Base.fLastRandom = UnitRandom();
        return now.bReset;
    case FLUIDSOURCE_WAVE:
        *pfUnit = WaveValue(Base.dwWaveType, Base.fWavePhase, EffectiveWavePeriod(pctl), now.qwTick);
        return true;
    case FLUIDSOURCE_SOUND:
        *pfUnit = SmoothedSoundLevel(pctl);
        return true;
    default:
        return false;
    }
}

// Values. Each is worked out aside and stored once, so that a module never reads half a result.

i32 MapInteger(const ControlInteger &Int, f32 fUnit)
{
    const f32 fMin = static_cast<f32>(Int.nMin);
    const f32 fMax = static_cast<f32>(Int.nMax);
    return TruncateSigned((fMax - fMin) * fUnit + fMin + 0.5f, Int.nMin);
}

i64 NearerEnd(const ControlInteger &Int, i64 n)
{
    return std::abs(n - Int.nMin) < std::abs(n - Int.nMax) ? Int.nMin : Int.nMax;
}

i64 WithWantedParity(const ControlInteger &Int, i64 n)
{
    const bool bOdd = n & 1;
    if (!Int.bOnlyOdd == !Int.bOnlyEven || bOdd == (Int.bOnlyOdd != 0))
        return n;
    for (const i64 nTry : {n + 1, n - 1})
        if (nTry >= Int.nMin && nTry <= Int.nMax)
            return nTry;
    return n;
}

i32 ConstrainInteger(const ControlInteger &Int, i32 nValue)
{
    const i64 n = Int.bMinMax ? NearerEnd(Int, nValue) : nValue;
    return static_cast<i32>(WithWantedParity(Int, n));
}

f32 ConstrainFloat(const ControlFloat &Float, f32 fValue)
{
    if (!Float.bMinMax)
        return fValue;
    return std::fabs(fValue - Float.fMin) < std::fabs(fValue - Float.fMax) ? Float.fMin : Float.fMax;
}

void EvaluateInteger(ControlRecord *pctl, const Evaluation &now)
{
    ControlInteger &Int = pctl->Integer;
    f32 fUnit;
    if (TakeUnit(pctl, now, &fUnit))
        Int.nValue = ConstrainInteger(Int, MapInteger(Int, fUnit));
    else if (SourceIsRandom(pctl->Base))
        Int.nValue = ConstrainInteger(Int, Int.nValue);
}

void EvaluateFloat(ControlRecord *pctl, const Evaluation &now)
{
    ControlFloat &Float = pctl->Float;
    f32 fUnit;
    if (TakeUnit(pctl, now, &fUnit))
        Float.fValue = ConstrainFloat(Float, (Float.fMax - Float.fMin) * fUnit + Float.fMin);
    else if (SourceIsRandom(pctl->Base))
        Float.fValue = ConstrainFloat(Float, Float.fValue);
}

void EvaluateBoolean(ControlRecord *pctl, const Evaluation &now)
{
    f32 fUnit;
    if (TakeUnit(pctl, now, &fUnit))
        pctl->Boolean.bState = fUnit > pctl->Boolean.fThreshold;
}

// Without rows there is nothing to choose: the value stays.
void EvaluateItemSelect(ControlRecord *pctl, const Evaluation &now)
{
    ControlItemSelect &Items = pctl->ItemSelect;
    const u32 nItems = Items.nItems;
    if (now.bReset && nItems && SourceIsRandom(pctl->Base))
        Items.nCurrentItemValue = RandomWord() % nItems;
}

void EvaluateFileSelect(ControlRecord *pctl, const Evaluation &now)
{
    const u32 bNewList = RefreshLineIndex(pctl);
    if (now.bReset)
        TakeNextFile(pctl);
    else if (bNewList)
        TakeCurrentFile(pctl);
}

struct EvaluateRow {
    u32 dwType;
    void (*pfnEvaluate)(ControlRecord *pctl, const Evaluation &now) = nullptr; // null: nothing
};

constexpr ControlTypeTable<EvaluateRow> asEvaluate({
    {CONTROLTYPE_UNDEFINED},
    {CONTROLTYPE_GROUP},
    {CONTROLTYPE_INTEGER, EvaluateInteger},
    {CONTROLTYPE_ITEMSELECT, EvaluateItemSelect},
    {CONTROLTYPE_FLOAT, EvaluateFloat},
    {CONTROLTYPE_BOOLEAN, EvaluateBoolean},
    {CONTROLTYPE_FILESELECT, EvaluateFileSelect},
    {CONTROLTYPE_TILE},
});

void EvaluateAt(ControlRecord *pctl, Evaluation now)
{
    ControlBase &Base = pctl->Base;
    if (NoiseIsDue(&Base, now.qwTick))
        now.bReset = true;
    if (now.bReset && Base.dwSource == FLUIDSOURCE_WAVE && Base.bRandomPhase)
        Base.fWavePhase = UnitRandom();
    if (const auto pfnEvaluate = asEvaluate[Base.dwType].pfnEvaluate)
        pfnEvaluate(pctl, now);
}

} // namespace

void EvaluateControl(ControlRecord *pctl, bool bReset)
{
    EvaluateAt(pctl, {TickCount(), bReset});
}

void EvaluateControls(const ModuleSlot *pms, bool bReset)
{
    const Evaluation now = {TickCount(), bReset};
    for (u32 i = 0; i < CONTROLS_MAX && pms->apControl[i]; i++)
        EvaluateAt(pms->apControl[i], now);
}

u32 EffectiveWavePeriod(const ControlRecord *pctl)
{
    if (pctl->Base.nWavePeriod == DURATION_NEVER)
        return ALL_ONES;
    return static_cast<u32>(std::min<u64>(pctl->Base.nWavePeriod * TimeScale(), ALL_ONES));
}

f32 WaveValue(u32 dwWaveType, f32 fPhase, u32 nPeriod, u64 qwTick)
{
    if (dwWaveType >= std::size(apfnWave))
        return UNKNOWN_WAVE;
    if (nPeriod == 0)
        return apfnWave[dwWaveType](0, 4); // the shortest period whose quarter is whole
    return apfnWave[dwWaveType](qwTick + TruncateUnsigned(static_cast<f32>(nPeriod) * fPhase), nPeriod);
}

f32 SmoothedSoundLevel(const ControlRecord *pctl)
{
    const u32 nSamples = std::min(pctl->Base.nSamples, SOUND_HISTORY);
    f32 fSum = FrameSoundLevel();
    for (u32 i = 0; i < nSamples; i++)
        fSum += afSoundHistory[i].load(std::memory_order_relaxed);
    return fSum / static_cast<f32>(nSamples + 1);
}

void ShiftSoundHistory(u64 qwTick)
{
    ASSERT_MAIN_THREAD();
    if (qwTick - qwSoundHistoryTick <= HISTORY_STEP_MS)
        return;
    for (u32 i = SOUND_HISTORY - 1; i > 0; i--)
        afSoundHistory[i].store(afSoundHistory[i - 1].load(std::memory_order_relaxed), std::memory_order_relaxed);
    afSoundHistory[0].store(FrameSoundLevel(), std::memory_order_relaxed);
    qwSoundHistoryTick = qwTick;
}

void ClearSoundHistory()
{
    for (std::atomic<f32> &fLevel : afSoundHistory)
        fLevel.store(0.0f, std::memory_order_relaxed);
    qwSoundHistoryTick = 0;
}

f32 UnitRandom()
{
    return static_cast<f32>(RandomWord()) * UNIT_PER_WORD;
}
