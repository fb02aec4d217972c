// Notices.h -- what the program has to tell its user in plain words
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

// Says it on standard error and keeps it for the window. The same text is kept once. [main-thread]
void AddNotice(std::string_view text);
// All notices so far, one a line, UTF-8; empty: none. Stays as it is until the next AddNotice.
const std::string &NoticeText();
