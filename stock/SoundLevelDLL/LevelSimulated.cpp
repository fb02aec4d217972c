// LevelSimulated.cpp -- a made-up sound level that breathes like music
#include "stock/SoundLevelDLL/LevelSimulated.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double BEAT_MS = 520; // 115 beats a minute, from which the tempo drifts
constexpr i64 BAR_BEATS = 4;
constexpr i64 PHRASE_BEATS = 32;
constexpr double PULSE_BEATS = 3;    // a pulse has died away after this time
constexpr double ATTACK_BEATS = 0.1; // and reaches its height after this one
constexpr double PI = 3.14159265358979323846;

constexpr double afAccent[BAR_BEATS] = {1.0, 0.62, 0.84, 0.7};

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
double Chance(u64 qwSeed, Voice eVoice, i64 nPlace)
{
    const u64 qw = MixBits(MixBits(qwSeed + eVoice * 0x9E3779B97F4A7C15ull) + static_cast<u64>(nPlace));
    return static_cast<double>(qw >> 11) * 0x1p-53;
}

double Smooth(double f)
{
    f = std::clamp(f, 0.0, 1.0);
    return f * f * (3 - 2 * f);
}

// Wanders between 0 and 1 from one whole number to the next.
double Wander(u64 qwSeed, Voice eVoice, double fPlace)
{
    const double fFloor = std::floor(fPlace);
    const i64 n = static_cast<i64>(fFloor);
    return std::lerp(Chance(qwSeed, eVoice, n), Chance(qwSeed, eVoice, n + 1), Smooth(fPlace - fFloor));
}

// The tempo drifts by about a tenth, as players do.
double Drifted(u64 qwSeed, double fBeat)
{
    const double fLong = std::sin(2 * PI * (fBeat / 97 + Chance(qwSeed, VOICE_DRIFT, 0)));
    const double fShort = std::sin(2 * PI * (fBeat / 41 + Chance(qwSeed, VOICE_DRIFT, 1)));
    return fBeat + 1.0 * fLong + 0.35 * fShort;
}

double PulseShape(double fSinceBeat)
{
    if (fSinceBeat <= 0 || fSinceBeat >= PULSE_BEATS)
        return 0;
    if (fSinceBeat < ATTACK_BEATS)
        return Smooth(fSinceBeat / ATTACK_BEATS);
    const double fLeft = (PULSE_BEATS - fSinceBeat) / (PULSE_BEATS - ATTACK_BEATS); // ends at 0, not nearly
    return std::exp(-3.0 * (fSinceBeat - ATTACK_BEATS)) * fLeft;
}

double BeatHeight(u64 qwSeed, i64 nBeat)
{
    const i64 iInBar = ((nBeat % BAR_BEATS) + BAR_BEATS) % BAR_BEATS;
    return afAccent[iInBar] * (0.65 + 0.35 * Chance(qwSeed, VOICE_BEAT, nBeat));
}

double OffbeatHeight(u64 qwSeed, i64 nBeat)
{
    const double fChance = Chance(qwSeed, VOICE_OFFBEAT, nBeat);
    return fChance < 0.4 ? 0 : 0.6 * fChance;
}

// What the beat of that number, and the offbeat after it, still give now.
double BeatPulses(u64 qwSeed, i64 nBeat, double fSinceBeat)
{
    double fSum = 0;
    if (const double fShape = PulseShape(fSinceBeat); fShape > 0)
        fSum += BeatHeight(qwSeed, nBeat) * fShape;
    if (const double fShape = PulseShape(fSinceBeat - 0.5); fShape > 0)
        fSum += OffbeatHeight(qwSeed, nBeat) * fShape;
    return fSum;
}

double Pulses(u64 qwSeed, double fBeat)
{
    const i64 nNow = static_cast<i64>(std::floor(fBeat));
    double fSum = 0;
    for (i64 n = nNow - 3; n <= nNow; n++)
        fSum += BeatPulses(qwSeed, n, fBeat - static_cast<double>(n));
    return fSum;
}

double PhraseEnergy(u64 qwSeed, i64 nPhrase)
{
    return 0.6 + 0.4 * Chance(qwSeed, VOICE_ENERGY, nPhrase);
}

// One phrase in five is a break with hardly any beat.
double PhraseDrums(u64 qwSeed, i64 nPhrase)
{
    return Chance(qwSeed, VOICE_DRUMS, nPhrase) < 0.2 ? 0.12 : 1.0;
}

// Bends towards 1 instead of being cut off there.
double SoftLimit(double fLevel)
{
    constexpr double KNEE = 0.8;
    return fLevel <= KNEE ? fLevel : KNEE + (1 - KNEE) * (1 - std::exp(-(fLevel - KNEE) / (1 - KNEE)));
}

double MusicLevel(u64 qwSeed, double fBeat)
{
    const double fFloor = std::floor(fBeat / PHRASE_BEATS);
    const i64 nPhrase = static_cast<i64>(fFloor);
    const double fInPhrase = fBeat - fFloor * PHRASE_BEATS;
    const double fTurn = Smooth((fInPhrase - (PHRASE_BEATS - BAR_BEATS)) / BAR_BEATS); // the last bar leads over
    const double fEnergy = std::lerp(PhraseEnergy(qwSeed, nPhrase), PhraseEnergy(qwSeed, nPhrase + 1), fTurn);
    const double fDrums = std::lerp(PhraseDrums(qwSeed, nPhrase), PhraseDrums(qwSeed, nPhrase + 1), fTurn);
    const double fBed = 0.04 + 0.22 * Wander(qwSeed, VOICE_SWELL, fBeat / 13) +
                        0.14 * Wander(qwSeed, VOICE_LINE, fBeat / 1.5) +
                        0.05 * Wander(qwSeed, VOICE_FLUTTER, fBeat * 3);
    return SoftLimit(fEnergy * (fBed + 0.7 * fDrums * Pulses(qwSeed, fBeat)));
}

} // namespace

u32 SetSimulatedScale(SimulatedTempo *pTempo, u32 nScale, double fNowMs)
{
    if (nScale < 1 || nScale > SIMULATED_SCALE_MAX)
        return 0;
    pTempo->fAnchorBeat = SimulatedBeatAt(pTempo, fNowMs);
    pTempo->fAnchorMs = fNowMs;
    pTempo->nScale = nScale;
    return 1;
}

double SimulatedBeatAt(const SimulatedTempo *pTempo, double fNowMs)
{
    const double fScale = pTempo->nScale ? pTempo->nScale : 1;
    return pTempo->fAnchorBeat + (fNowMs - pTempo->fAnchorMs) / (BEAT_MS * fScale);
}

f32 SimulatedLevelAt(const SimulatedTempo *pTempo, double fNowMs)
{
    const double fBeat = Drifted(pTempo->qwSeed, SimulatedBeatAt(pTempo, fNowMs));
    return static_cast<f32>(MusicLevel(pTempo->qwSeed, fBeat));
}
