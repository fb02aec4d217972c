// OverlayTexts.h -- what the five overlays say
#pragma once

#include "platform/BaseTypes.h"

// Each brings the text of its overlay up to date, and asks for a new layout where the text is a new one. [main-thread]
void UpdatePresetName();
void UpdateKeyHelp();
void UpdateFrameRate();
void UpdateMetrics();
// Takes what modules sent. A text that comes while the overlay is shown keeps the overlay's size.
void UpdateMessages();

// No text was ever given.
void ForgetOverlayTexts();
