// PresetNews.h -- news of the running preset, for windows and whoever else keeps pointers into it
//
// Told on the main thread, between frames, by the functions that change things: at once, and before anything is freed.
// Who listens drops its pointers and notes what to repaint; it does not change the preset from there.
//
// Of the current preset only. One that is being read or taken down is told of as a whole: "Going" stands for everything
// in it, and no part of it is told of again; "Came" likewise. The same holds for a plane that is not in the list yet.
// While "Going" is told there is no current preset any more. Bitmaps are not told of: they change with every resize.
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

void TellPresetNews(const PresetNews &news);
// The same where news.lppsi is the current preset and news.pps, if any, in its list. What the functions call that
// change a preset whichever it is.
void TellIfCurrent(const PresetNews &news);
