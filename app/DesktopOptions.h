// DesktopOptions.h -- the command line of the desktop program
#pragma once

#include "app/Startup.h"

#include <string>

struct DesktopOptions {
    StartOptions start;
    u32 bListSound = 0;
    u32 bHelp = 0;
    u32 bVersion = 0;
};

// False with one clear line in *psError. A first operand that names an existing file is the preset, and must
// have a path of less than NAME_CHARS characters; one that does not is ignored. [main-thread]
bool ReadDesktopOptions(int argc, char **argv, DesktopOptions *pdo, std::string *psError);
std::string DesktopHelp();
