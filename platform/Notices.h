// Notices.h -- what the program has to tell its user in plain words
#pragma once

#include "platform/BaseTypes.h"
#include "platform/Listeners.h"

#include <string>
#include <string_view>

// Says it on standard error and shows it in the window, behind those that stand there. A text that comes again is shown
// again, also after it was dismissed, with the number of times that it came. [main-thread]
void AddNotice(std::string_view text);
// The user has read what is shown. [main-thread]
void DismissNotices();

// How many are shown: those that came, or came again, since the last dismissal.
u32 NoticeCount();
// These, one a line, UTF-8; empty: none. Stays as it is until the next AddNotice or DismissNotices.
const std::string &NoticeText();

// Told after every change of what is shown, so that the window follows also while no frames come. [main-thread]
extern Listeners<void()> NoticeListeners;
