// RenderOptions.h -- the command line of the headless renderer
#pragma once

#include "app/Startup.h"
#include "output/pictures/NumberPattern.h"
#include "platform/BaseTypes.h"

#include <string>

struct RenderOptions {
    StartOptions start;
    std::string preset; // PRESET: a file, or "default"
    i64 nFrames = 300;
    double fSeconds = 0;  // 0: nFrames counts
    u32 bFramesGiven = 0; // either of them; else a song's length decides
    i64 nWidth = 1280;
    i64 nHeight = 720;
    double fFps = 60;
    std::string out = "Untitled-%04d.png"; // "-": raw frames to standard output
    NumberPattern pattern;                 // of out
    i64 nWarmup = 0;
    u64 qwSeed = 1;
    std::string sound; // empty: the simulated level
    u32 bOnePass = 0;
    u32 bThreads = 1;
    std::string save;
    std::string list;
    u32 bJson = 0;
    u32 bStats = 0;
    u32 bHelp = 0;
    u32 bVersion = 0;
};

// Reads and checks the command line. False with one clear line in *psError. [main-thread]
bool ReadRenderOptions(int argc, char **argv, RenderOptions *pro, std::string *psError);
std::string RenderHelp();
