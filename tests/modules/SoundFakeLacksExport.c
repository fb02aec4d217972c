/* SoundFakeLacksExport.c -- a sound monitor library without one of the exports that must exist */
#define FAKE_LACKS_HOMING
#define SOUND_FAKE_BODY
#include "SoundFake.h"
