// LevelSimulated.cpp -- a made-up sound level that breathes like music
#include "stock/shared/LevelSimulated.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr f64 BEAT_MS = 520; // 115 beats a minute, from which the tempo drifts
constexpr i64 BAR_BEATS = 4;
constexpr i64 PHRASE_BEATS = 32;
constexpr f64 PULSE_BEATS = 3;    // a pulse has died away after this time
constexpr f64 ATTACK_BEATS = 0.1; // and reaches its height after this one
constexpr f64 PI = 3.14159265358979323846;

constexpr f64 afAccent[BAR_BEATS] = {1.0, 0.62, 0.84, 0.7};

// Independent random numbers for each use of one seed.
enum Voice : u64 {
    VOICE_ENERGY = 1,
    VOICE_DRUMS,
    VOICE_BEAT,
    VOICE_OFFBEAT,
    VOICE_SWELL,
    VOICE_LINE,
    VOICE_FLUTTER,
    VOICE_DRIFT
};

u64 MixBits(u64 qw)
{
    qw = (qw ^ (qw >> 30)) * 0xBF58476D1CE4E5B9ull;
    qw = (qw ^ (qw >> 27)) * 0x94D049BB133111EBull;
    return qw ^ (qw >> 31);
}

// 0 to 1, fixed by seed, voice and place.
f64 Chance(u64 qwSeed, Voice eVoice, i64 nPlace)
{
    const u64 qw = MixBits(MixBits(qwSeed + eVoice * 0x9E3779B97F4A7C15ull) + static_cast<u64>(nPlace));
    return static_cast<f64>(qw >> 11) * 0x1p-53;
}

f64 Smooth(f64 f)
{
    f = std::clamp(f, 0.0, 1.0);
    return f * f * (3 - 2 * f);
}

// Wanders between 0 and 1 from one whole number to the next.
f64 Wander(u64 qwSeed, Voice eVoice, f64 fPlace)
{
    const f64 fFloor = std::floor(fPlace);
    const i64 n = static_cast<i64>(fFloor);
    return std::lerp(Chance(qwSeed, eVoice, n), Chance(qwSeed, eVoice, n + 1), Smooth(fPlace - fFloor));
}

// The tempo drifts by about a tenth, as players do.
f64 Drifted(u64 qwSeed, f64 fBeat)
{
    const f64 fLong = std::sin(2 * PI * (fBeat / 97 + Chance(qwSeed, VOICE_DRIFT, 0)));
    const f64 fShort = std::sin(2 * PI * (fBeat / 41 + Chance(qwSeed, VOICE_DRIFT, 1)));
    return fBeat + 1.0 * fLong + 0.35 * fShort;
}

f64 PulseShape(f64 fSinceBeat)
{
    if (fSinceBeat <= 0 || fSinceBeat >= PULSE_BEATS)
        return 0;
    if (fSinceBeat < ATTACK_BEATS)
        return Smooth(fSinceBeat / ATTACK_BEATS);
    const f64 fLeft = (PULSE_BEATS - fSinceBeat) / (PULSE_BEATS - ATTACK_BEATS); // ends at 0, not nearly
    return std::exp(-3.0 * (fSinceBeat - ATTACK_BEATS)) * fLeft;
}

f64 BeatHeight(u64 qwSeed, i64 nBeat)
{
    const i64 iInBar = ((nBeat % BAR_BEATS) + BAR_BEATS) % BAR_BEATS;
    return afAccent[iInBar] * (0.65 + 0.35 * Chance(qwSeed, VOICE_BEAT, nBeat));
}

f64 OffbeatHeight(u64 qwSeed, i64 nBeat)
{
    const f64 fChance = Chance(qwSeed, VOICE_OFFBEAT, nBeat);
    return fChance < 0.4 ? 0 : 0.6 * fChance;
}

// What the beat of that number, and the offbeat after it, still give now.
f64 BeatPulses(u64 qwSeed, i64 nBeat, f64 fSinceBeat)
{
    f64 fSum = 0;
    if (const f64 fShape = PulseShape(fSinceBeat); fShape > 0)
        fSum += BeatHeight(qwSeed, nBeat) * fShape;
    if (const f64 fShape = PulseShape(fSinceBeat - 0.5); fShape > 0)
        fSum += OffbeatHeight(qwSeed, nBeat) * fShape;
    return fSum;
}

f64 Pulses(u64 qwSeed, f64 fBeat)
{
    const i64 nNow = static_cast<i64>(std::floor(fBeat));
    f64 fSum = 0;
    for (i64 n = nNow - 3; n <= nNow; n++)
        fSum += BeatPulses(qwSeed, n, fBeat - static_cast<f64>(n));
    return fSum;
}

f64 PhraseEnergy(u64 qwSeed, i64 nPhrase)
{
    return 0.6 + 0.4 * Chance(qwSeed, VOICE_ENERGY, nPhrase);
}

// One phrase in five is a break with hardly any beat.
f64 PhraseDrums(u64 qwSeed, i64 nPhrase)
{
    return Chance(qwSeed, VOICE_DRUMS, nPhrase) < 0.2 ? 0.12 : 1.0;
}

// Bends towards 1 instead of being cut off there.
f64 SoftLimit(f64 fLevel)
{
    constexpr f64 KNEE = 0.8;
    return fLevel <= KNEE ? fLevel : KNEE + (1 - KNEE) * (1 - std::exp(-(fLevel - KNEE) / (1 - KNEE)));
}

f64 MusicLevel(u64 qwSeed, f64 fBeat)
{
    const f64 fFloor = std::floor(fBeat / PHRASE_BEATS);
    const i64 nPhrase = static_cast<i64>(fFloor);
    const f64 fInPhrase = fBeat - fFloor * PHRASE_BEATS;
    const f64 fTurn = Smooth((fInPhrase - (PHRASE_BEATS - BAR_BEATS)) / BAR_BEATS); // the last bar leads over
    const f64 fEnergy = std::lerp(PhraseEnergy(qwSeed, nPhrase), PhraseEnergy(qwSeed, nPhrase + 1), fTurn);
    const f64 fDrums = std::lerp(PhraseDrums(qwSeed, nPhrase), PhraseDrums(qwSeed, nPhrase + 1), fTurn);
    const f64 fBed = 0.04 + 0.22 * Wander(qwSeed, VOICE_SWELL, fBeat / 13) +
                     0.14 * Wander(qwSeed, VOICE_LINE, fBeat / 1.5) + 0.05 * Wander(qwSeed, VOICE_FLUTTER, fBeat * 3);
    return SoftLimit(fEnergy * (fBed + 0.7 * fDrums * Pulses(qwSeed, fBeat)));
}

} // namespace

u32 SetSimulatedScale(SimulatedTempo *pTempo, u32 nScale, f64 fNowMs)
{
    if (nScale < 1 || nScale > SIMULATED_SCALE_MAX)
        return 0;
    pTempo->fAnchorBeat = SimulatedBeatAt(pTempo, fNowMs);
    pTempo->fAnchorMs = fNowMs;
    pTempo->nScale = nScale;
    return 1;
}

f64 SimulatedBeatAt(const SimulatedTempo *pTempo, f64 fNowMs)
{
    const f64 fScale = pTempo->nScale ? pTempo->nScale : 1;
    return pTempo->fAnchorBeat + (fNowMs - pTempo->fAnchorMs) / (BEAT_MS * fScale);
}

f32 SimulatedLevelAt(const SimulatedTempo *pTempo, f64 fNowMs)
{
    const f64 fBeat = Drifted(pTempo->qwSeed, SimulatedBeatAt(pTempo, fNowMs));
    return static_cast<f32>(MusicLevel(pTempo->qwSeed, fBeat));
}
