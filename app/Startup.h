// Startup.h -- the life of the process: what comes up, in which order, and what goes down
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

constexpr int EXIT_MAPPING = -1; // the shared block belongs to a program of another version, or another step failed
constexpr int EXIT_HEADLESS = 1;

// What the command line of the desktop program says.
struct StartOptions {
    std::u16string data;    // --data; empty: worked out
    std::u16string modules; // --modules
    std::u16string preset;  // an existing file, else empty
    u32 bNoMain = 0;        // --no-main
};

// The part of the start-up that needs no window: folders, settings, shared block, sound, modules, OpenGL test. 0 to go
// on, else the exit code with which the process must leave; the step that failed is named on standard error.
// [main-thread]
[[nodiscard]] int StartCore(const StartOptions &options);
// The part after the visuals window stands: buffer size, preset. path is what the command line names, else empty; the
// preset of the settings is then opened. Where it cannot be read, the default preset takes its place, untitled.
void StartPreset(std::u16string_view path);
// What the start-up left for later. After the first frame.
void RunPendingSteps();
// Writes the settings file. When the program is asked to end, before anything goes down.
void SaveSettings();
// Everything down again, in order.
void ShutDown();

// One line that says which sound the program would listen to. Needs nothing else to be up; may wait two seconds.
std::string DescribeSound(const StartOptions &options);

// The parts that the headless renderer shares: settings, sound block, modules. Nothing outside the named folders is
// read or written. Answers as StartCore does; after a failure nothing is left that would have to go down. [main-thread]
[[nodiscard]] int StartHeadless(const StartOptions &options);
void ShutDownHeadless();

// Takes the next timer number: atomic, never 0, first 70. [any-thread]
u32 NextTimerId();
