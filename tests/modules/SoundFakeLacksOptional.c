/* SoundFakeLacksOptional.c -- a sound monitor library with no more than the exports that must exist */
#define FAKE_LACKS_OPTIONAL
#define SOUND_FAKE_BODY
#include "SoundFake.h"
