// MixRules.h -- the list of mixer rules: adding, removing, exchanging
#pragma once

#include "state/PresetState.h"

#include <span>

// Appends a rule whose four fields are 0, with a fresh image and blend weight. Returns the rule (its SrcIdx1 stands
// first), or null at the limit of rules, or of planes and rules together. [main-thread]
MixRule *AddMixRule(PresetState *lppsi);
// Deletes the rule and its image; later rules move down. Non-zero if there was such a rule.
u32 RemoveMixRule(PresetState *lppsi, u32 iRule);
// Exchanges two rules, which keep what they name. 0, with nothing changed: no such rules. [main-thread]
u32 SwapMixRules(PresetState *lppsi, u32 iRuleA, u32 iRuleB);
// Puts a rule with these fields in front of the one at iRule, or at the end, with an image of its own. 0, with nothing
// changed: no such place, too many rules, out of memory. [main-thread]
u32 InsertMixRule(PresetState *lppsi, u32 iRule, const MixRule &rule);
// Takes the place of all rules; each gets an image of its own. 0, with nothing changed: too many, out of memory.
// [main-thread]
u32 ReplaceMixRules(PresetState *lppsi, std::span<const MixRule> rules);
// Deletes all of them.
void RemoveAllMixRules(PresetState *lppsi);
