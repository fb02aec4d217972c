/* SoundFakeComplete.c -- a sound monitor library with all exports */
#define SOUND_FAKE_BODY
#include "SoundFake.h"
