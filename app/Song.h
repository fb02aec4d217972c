// Song.h -- the sound levels of a sound file at any moment of it
#pragma once

#include "platform/BaseTypes.h"
#include "stock/shared/LevelReading.h"

#include <string>
#include <vector>

// The levels at the end of one step of the meter.
struct SongStep {
    f32 fRaw;
    f32 fDynamic;
    u32 nLastSound; // number of the last step with sound, from 1; 0: none so far
};

// Zero-filled is a song without a sound.
struct Song {
    u32 nRate;                   // frames a second
    u32 nStepFrames;             // frames from one step to the next
    u64 nFrames;                 // that could be read
    u64 nPromised;               // that the file speaks of; more than nFrames if it is damaged
    u32 bBroken;                 // a decoder gave up behind the last of nFrames
    std::vector<SongStep> steps; // a little more than the song: until its last sound has died away
};

// Reads a WAV, FLAC, OGG, MP3 or other sound file from end to end and keeps its levels, made by the arithmetic of the
// live monitor; of more than eight channels the first eight. False with a clear text in *psError for what is no such
// file, holds no sound or is longer than a day. Keeps standard error from what the decoders print there, so not while
// other threads write to it. [main-thread]
bool ReadSong(Song *pSong, const std::string &sPath, std::string *psError);

// Length of what could be read.
f64 SongSeconds(const Song &song);
// Empty, or what is missing of a damaged file.
std::string SongDamage(const Song &song);

// What the live monitor would have found at a moment, in milliseconds from the start of the song. Silence before the
// start and after the end. [any-thread]
LevelReading SongReadingAt(const Song &song, f64 fSongMs);
