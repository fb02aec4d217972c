// SongLength.h -- what the header of a sound file promises
#pragma once

#include "platform/BaseTypes.h"

#include <cstdio>

// The bytes of sound in a file. Zero-filled: the header says nothing.
struct SoundBytesPromised {
    u64 cbPromised; // by the header
    u64 cbPresent;  // of them in the file
    u64 nEmptyAt;   // where a length of 0 stands in front of sound; 0: nowhere
};

// Reads the header of a WAV, RF64, AIFF, W64 or AU file and compares it with the file's size: the decoders take
// one that was cut off for a shorter song. A writer into a pipe leaves a length that says nothing. Leaves the file
// anywhere. [any-thread]
SoundBytesPromised ReadSoundPromise(FILE *pFile);
