// SettingsTable.h -- one row per stored setting: its tag, default, limits, and what reads and writes it
#pragma once

#include "engine/XmlText.h"
#include "state/GlobalSettings.h"

// What windows keep in the settings file and what they are told of it. Set by the window code before ReadGlobals.
struct SettingsHooks {
    u32 (*pfnReadLayout)(XmlContext *pxc); // at the level of Globals; at first keeps what stands there
    u32 (*pfnWriteLayout)(XmlContext *pxc);
    void (*pfnSnapToEdge)(u32 bSnap); // the window snapping works on a copy of the setting; may be null
};
extern SettingsHooks SettingsHook;

// Reads and writes all rows in the order of the file, at the level of Globals. A setting that is absent, or that its
// row ignores, stays as it is; every other one comes out inside its limits. [main-thread]
void ReadSettings(XmlContext *pxc, GlobalSettingsRecord *pgs);
void WriteSettings(XmlContext *pxc, const GlobalSettingsRecord *pgs);

// Zeroes the record of settings and sets the defaults of every row. Needs the path table. [main-thread]
void SetDefaultSettings();
