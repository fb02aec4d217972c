// Presenters.h -- where finished frames go
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

// Receives every finished frame, on the main thread; the bitmap is valid during the call. Non-zero: the frame counts as
// shown.
using PresenterFn = u32 (*)(const HostBitmap *hbm, void *pvContext);

// Adds a receiver behind those that stand. [main-thread]
void AddPresenter(PresenterFn pfn, void *pvContext);
// Also while a frame is being handed out: one that is removed receives no more, and the others miss nothing.
// [main-thread]
void RemovePresenter(PresenterFn pfn, void *pvContext);

// Hands a finished frame to all of them in order, and counts it as shown if one of them says so. Nothing for null.
// [main-thread]
void PresentFrame(const HostBitmap *hbm);
