// MixRules.h -- the list of mixer rules: adding, removing
#pragma once

#include "state/PresetState.h"

// Appends a rule whose four fields are 0, with a fresh image and blend weight. Returns the rule (its SrcIdx1 stands
// first), or null at the limit of rules, or of planes and rules together. [main-thread]
MixRule *AddMixRule(PresetState *lppsi);
// Deletes the rule and its image; later rules move down. Non-zero if there was such a rule.
u32 RemoveMixRule(PresetState *lppsi, u32 iRule);
// Deletes all of them.
void RemoveAllMixRules(PresetState *lppsi);
