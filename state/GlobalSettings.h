// GlobalSettings.h -- the one record of settings and run-time handles
#pragma once

#include "include/hosttypes.h"
#include "include/module.h"
#include "include/sound.h"
#include "platform/BaseTypes.h"

struct SharedLibrary;

constexpr u32 SOUND_MONITOR_MARK = 0x845FED; // dwMonitorMark of a complete binding
constexpr u32 BUFFER_PIXELS_MAX = 33177600;  // 7680 x 4320
constexpr u32 BUFFER_PIXELS_MIN = 200000;
constexpr u32 TIME_SCALE_MAX = 100;

// The sound monitor library while it is bound.
struct SoundMonitorBinding {
    SharedLibrary *hMonitorLib; // null for a monitor inside the program
    void *hMonitor;             // what pfnStart returned
    AMStartVolumeMonitorFn pfnStart;
    AMStopVolumeMonitorFn pfnStop;
    AMGetVolumeLevelFn pfnGetLevel;
    AMIsQuietFn pfnIsQuiet;
    AMSetHomingSamplesFn pfnSetHomingSamples;
    AMSetSimSoundTickScaleFn pfnSetSimScale; // may be null in a complete binding
    u32 dwMonitorMark;                       // SOUND_MONITOR_MARK when the binding is complete, else 0
};

// Zeroed at start, then filled with defaults. Written on the main thread. Plane threads read TimeScale and
// dwFramesShown without a lock: a frame may see the old value.
struct GlobalSettingsRecord {
    SoundMonitorBinding Monitor;

    // Stored settings. The names are the tags in the settings file.
    i32 PresetBView;         // view mode of the preset browser
    i32 ShowModules;         // module columns in the preset browser
    i32 SnapToEdge;          // windows snap to edges
    i32 DetailScale;         // buffer scale in percent of the window, 10 to 100
    u32 BufferCap;           // largest buffer in pixels
    i32 FPSTarget;           // frames a second, 20 to 480
    u32 ThreadedPlanes;      // each plane on a thread of its own
    u32 MixInParallel;       // one-pass mixer
    u32 AutoAdjustBuffer;    // the buffer follows the visuals window
    u32 AutoAdjustBufferCap; // stored and restored only
    i32 FrameThickness;      // frame of the visuals window, 0 to 32
    i32 VolumeType;          // VOLUMETYPE_*
    u32 TimeScale;           // multiplier for all rates and durations, 1 to TIME_SCALE_MAX
    NameText Preset;         // file of the last preset
    NameText FrameRecordFormat;
    NameText FrameRecordFolder;
    i32 FrameRecordWidth;
    i32 FrameRecordHeight;
    i32 FrameRecordDelay; // milliseconds
    i32 FrameRecordMethod;
    NameText FriendlyName; // chosen keystroke combination
    NameText FrameRecordStart;
    NameText FrameRecordStop;
    u32 ShowMP, ShowRGB, ShowPrg, ShowOneRow; // parts of the palette window that are shown

    // Run-time members, not stored.
    SoundFrame *pSound;                 // allocated at start, freed at shutdown
    ShowModuleMessageFn pfnShowMessage; // callback for modules; set before the first preset; null: no overlay
    void *pSharedStatus;                // the SharedStatusBlock view; null in programs without one
    i32 nBufferWidth;                   // size of every bitmap of the preset
    i32 nBufferHeight;
    HostWindow hwndVisuals; // the visuals window as modules see it
    u32 bVisualsWindow;     // the window exists: the buffer follows its size
    u32 bResizePending;     // a buffer resize is wanted
    u32 bRecording;         // the frame recorder is armed or runs
    u32 dwFramesShown;      // frames shown; drives fractional calls per frame
    u32 nMessageSeconds;    // how long module messages stay
    u32 dwPlaneWaitMs;      // longest wait for the planes of a frame; WAIT_FOREVER to drop none
};

extern GlobalSettingsRecord GlobalSettings;
