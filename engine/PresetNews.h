// PresetNews.h -- news of the running preset, for windows and whoever else keeps pointers into it
//
// Told on the main thread, between frames, by the functions that change things: at once, and before anything is freed.
// Who listens drops its pointers and notes what to repaint; it does not change the preset from there.
#pragma once

#include "platform/Listeners.h"
#include "state/PresetState.h"

enum class NewsKind : u32 {
    Going,     // lppsi is about to be destroyed; not told for a preset that was never the current one
    Came,      // lppsi is the current preset, complete; null: there is none
    Marked,    // the document has another name, or its mark of changes is another one; no pointers
    Planes,    // planes were added, moved, removed or paused
    PlaneGoes, // pps is about to be freed; its slots have been told of one by one
    Slots,     // modules were added, moved, paused or had a setting changed; pps null: post-processing
    SlotGoes,  // pms is about to be freed, with its controls
    Control,   // pctl was edited; pms is its slot, or null for a rule's weight
    Mixer,     // rules were added, removed, moved or edited
    Saved,     // the preset stands in a file
};

struct PresetNews {
    NewsKind eKind;
    PresetState *lppsi;
    PlaneState *pps;
    ModuleSlot *pms;
    ControlRecord *pctl;
};

inline Listeners<void(const PresetNews &news)> PresetListeners;

inline void TellPresetNews(const PresetNews &news)
{
    PresetListeners.Tell(news);
}
