// WholeFile.h -- reads a file into memory at once
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

// Reads a regular file of at most cbMax bytes; pipes and devices, which could block or never end, are refused.
// Returns 0 when it cannot be read; *psWhy (may be null) then says why, and stays empty for a file that is simply
// not there. [any-thread]
u32 ReadWholeFile(std::u16string_view path, u64 cbMax, std::string *psBytes, std::string *psWhy = nullptr);

// Reads the first cbMost bytes of a regular file, all of a shorter one. Returns 0, with no bytes, when it cannot be
// read. [any-thread]
u32 ReadFileStart(std::u16string_view path, u64 cbMost, std::string *psBytes);
