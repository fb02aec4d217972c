// Notices.h -- what the program has to tell its user in plain words
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

// Says it on standard error and keeps it for the window. The same text is kept once. [main-thread]
void AddNotice(std::string_view text);
// Called after each new notice, so that the window shows it also while no frames come. Null: nobody.
extern void (*pfnNoticeAdded)();
// How many there are.
u32 NoticeCount();
// All notices so far, one a line, UTF-8; empty: none. Stays as it is until the next AddNotice.
const std::string &NoticeText();
