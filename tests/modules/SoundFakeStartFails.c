/* SoundFakeStartFails.c -- a sound monitor library whose monitor cannot start */
#define FAKE_START_FAILS
#define SOUND_FAKE_BODY
#include "SoundFake.h"
