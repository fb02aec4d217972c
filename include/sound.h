/* sound.h -- the block of sound levels that every module sees, and the exports of a sound monitor library
 *
 * Compiles as C11 and as C++20.
 */
#ifndef VORTICADE_SOUND_H
#define VORTICADE_SOUND_H

#include "hosttypes.h"

#define SOUND_SAMPLES 16

/* The sound levels of the frame. One zero-filled block for the life of the process; the host writes it on
 * its main thread before the planes are drawn and never while they are.
 *
 * fRawLevel is the level as the monitor gave it, roughly 0 to 1. fLevelA and fLevelB are that level
 * normalised to the range seen so far in this run, each with a random jitter of its own; the sample arrays
 * are jittered copies of them. All of them can lie somewhat outside 0 to 1: limit them where it matters. */
typedef struct SoundFrame {
    float afSampleA[SOUND_SAMPLES];    /* jittered copies of fLevelA */
    float afSampleB[SOUND_SAMPLES];    /* jittered copies of fLevelB */
    float afSampleMean[SOUND_SAMPLES]; /* mean of afSampleA[i] and afSampleB[i] */
    float fLevelA;
    float fLevelB;
    float fRawLevel;         /* what the sound source of the controls reads */
    uint8_t abReserved[16384]; /* zero */
} SoundFrame;

static_assert(sizeof(SoundFrame) == 16588, "SoundFrame");
VD_ASSERT_OFFSET(SoundFrame, afSampleB, 64);
VD_ASSERT_OFFSET(SoundFrame, afSampleMean, 128);
VD_ASSERT_OFFSET(SoundFrame, fLevelA, 192);
VD_ASSERT_OFFSET(SoundFrame, fLevelB, 196);
VD_ASSERT_OFFSET(SoundFrame, fRawLevel, 200);
VD_ASSERT_OFFSET(SoundFrame, abReserved, 204);

/* Kinds of level: the second argument of AMGetVolumeLevel. */
enum {
    VOLUMETYPE_RAW = 0,              /* RMS of the last moment, as it comes */
    VOLUMETYPE_EXPANDED = 1,         /* raw, with the quiet half of the range stretched */
    VOLUMETYPE_DYNAMIC = 2,          /* with automatic gain: quiet and loud music fill the same range */
    VOLUMETYPE_DYNAMIC_SIMULATED = 3 /* dynamic; a simulated level while no sound is detected */
};

/* Exports of a sound monitor library (SoundLevelDLL.dll). The names are looked up as they stand.
 * hMonitor comes from the C allocator; the host frees it with free() after AMStopVolumeMonitor. */
typedef void *(*AMStartVolumeMonitorFn)(int32_t nArgument); /* host passes 20; null: cannot start */
typedef void (*AMStopVolumeMonitorFn)(void *hMonitor);
typedef uint32_t (*AMGetVolumeLevelFn)(void *hMonitor, int32_t nVolumeType, float *pfLevel); /* 0: no level */
typedef uint32_t (*AMIsQuietFn)(void *hMonitor);                         /* must exist; the host does not call it */
typedef void (*AMSetHomingSamplesFn)(void *hMonitor, uint32_t nSamples); /* must exist; the host does not call it */
typedef void (*AMSetSimSoundTickScaleFn)(void *hMonitor, uint32_t dwScale); /* optional; 1 to 99 */
/* Optional. Writes one line of UTF-8 text that says what the library listens to, cut to cbText bytes with
 * its terminating 0. hMonitor may be null: then the answer tells what it would listen to. */
typedef uint32_t (*AMDescribeSourceFn)(void *hMonitor, char *pszText, uint32_t cbText);

#endif
