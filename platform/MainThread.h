// MainThread.h -- the thread that owns everything, and the check that nobody else acts as if
#pragma once

#include "platform/Assert.h"
#include "platform/Sanitizers.h"

// Both programs do so first of all. The thread that claims first stays the main thread for the life of the process; a
// later claim by another one stops the program. [any-thread]
void ClaimMainThread();
// Where nobody has claimed yet, as in most tests, whoever asks first has. [any-thread]
bool OnMainThread();

// The first line of a function that its header gives to the main thread alone. Not in one that a plane thread may
// enter too. Costs nothing in a release build.
#if !defined(NDEBUG) || defined(VD_ADDRESS_SANITIZER) || defined(VD_THREAD_SANITIZER)
constexpr bool MAIN_THREAD_IS_ASSERTED = true;
#define ASSERT_MAIN_THREAD() VD_ASSERT(OnMainThread())
#else
constexpr bool MAIN_THREAD_IS_ASSERTED = false;
#define ASSERT_MAIN_THREAD() static_cast<void>(0)
#endif
