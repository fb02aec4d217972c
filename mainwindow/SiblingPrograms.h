// SiblingPrograms.h -- the editors that ship as programs of their own
#pragma once

#include "state/Folders.h"

#include <string>

// Path of the program that the row names (PATH_PALETTE_EDITOR, PATH_SHADER_EDITOR), with or without its ".exe"; empty
// if there is no such file. [main-thread]
std::u16string FindSiblingProgram(PathRow eRow);
