/* SoundFake.h -- the body of the fake sound monitor libraries: it plays back what a test wants and notes its calls */
#ifndef SOUND_FAKE_H
#define SOUND_FAKE_H

#include <stdint.h>

#define FAKE_EXPORT __attribute__((visibility("default")))

/* Lives in the test, so that it outlasts the library. */
typedef struct FakeSoundLog {
    void *hStopped;       /* what AMStopVolumeMonitor was given */
    float afLevel[4];     /* the level of each kind */
    uint32_t bNoLevel;    /* give no level */
    uint32_t nLevelCalls; /* of AMGetVolumeLevel */
    int32_t nLastType;
    uint32_t nScaleCalls;
    uint32_t dwLastScale;
    uint32_t bUnloaded; /* the library has gone */
} FakeSoundLog;

typedef void (*FakeSetLogFn)(FakeSoundLog *pLog);
typedef int32_t (*FakeStartArgumentFn)(void);

#ifdef SOUND_FAKE_BODY

#include <stdlib.h>
#include <string.h>

static FakeSoundLog *pTestLog;
static int32_t nStartArgument;

FAKE_EXPORT void FakeSetLog(FakeSoundLog *pLog)
{
    pTestLog = pLog;
}

FAKE_EXPORT int32_t FakeStartArgument(void)
{
    return nStartArgument;
}

__attribute__((destructor)) static void NoteUnload(void)
{
    if (pTestLog)
        pTestLog->bUnloaded = 1;
}

FAKE_EXPORT void *AMStartVolumeMonitor(int32_t nArgument)
{
    nStartArgument = nArgument;
#ifdef FAKE_START_FAILS
    return NULL;
#else
    return malloc(100);
#endif
}

FAKE_EXPORT void AMStopVolumeMonitor(void *hMonitor)
{
    memset(hMonitor, 0xDD, 100); /* it must not be freed yet */
    if (pTestLog)
        pTestLog->hStopped = hMonitor;
}

FAKE_EXPORT uint32_t AMGetVolumeLevel(void *hMonitor, int32_t nVolumeType, float *pfLevel)
{
    if (!hMonitor || !pTestLog || pTestLog->bNoLevel)
        return 0;
    pTestLog->nLevelCalls++;
    pTestLog->nLastType = nVolumeType;
    *pfLevel = pTestLog->afLevel[nVolumeType & 3];
    return 1;
}

FAKE_EXPORT uint32_t AMIsQuiet(void *hMonitor)
{
    (void)hMonitor;
    return 0;
}

#ifndef FAKE_LACKS_HOMING
FAKE_EXPORT void AMSetHomingSamples(void *hMonitor, uint32_t nSamples)
{
    (void)hMonitor;
    (void)nSamples;
}
#endif

#ifndef FAKE_LACKS_OPTIONAL
FAKE_EXPORT void AMSetSimSoundTickScale(void *hMonitor, uint32_t dwScale)
{
    if (!hMonitor || !pTestLog)
        return;
    pTestLog->nScaleCalls++;
    pTestLog->dwLastScale = dwScale;
}

/* Fills all that it is given, and forgets the end. */
FAKE_EXPORT uint32_t AMDescribeSource(void *hMonitor, char *pszText, uint32_t cbText)
{
    memset(pszText, hMonitor ? 'b' : 'u', cbText);
    return 1;
}
#endif

#endif
#endif
