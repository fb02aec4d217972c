// Overlays.h -- the five translucent texts over the picture: what they say, when they show, where they sit
#pragma once

#include "output/ModuleMessages.h"
#include "platform/BaseTypes.h"
#include "toolkit/RichText.h"

// In the order in which they are painted, the last one on top.
enum OverlayId : u32 {
    OVERLAY_PRESET_NAME = 0,
    OVERLAY_KEY_HELP,
    OVERLAY_FRAME_RATE,
    OVERLAY_METRICS,
    OVERLAY_MESSAGES,
    OVERLAYS
};

enum OverlayAnchor : u32 {
    ANCHOR_TOP_LEFT = 0,
    ANCHOR_BOTTOM_LEFT = 2,
    ANCHOR_TOP_CENTER = 3,
    ANCHOR_CENTER = 4,
    ANCHOR_BOTTOM_CENTER = 5,
    ANCHOR_TOP_RIGHT = 6,
    ANCHOR_BOTTOM_RIGHT = 8,
};

enum OverlayFrameStyle : u32 { FRAME_TEXTURED = 1, FRAME_RAISED = 2 };

constexpr u32 OVERLAY_TICK_MS = 200;
constexpr u64 HIDE_NEVER = ~0ull;
constexpr i32 OVERLAY_MARGIN_X = 20; // between an overlay's edge and its text
constexpr i32 OVERLAY_MARGIN_Y = 15;
constexpr u8 OVERLAY_ALPHA = 180;

struct OverlayRect {
    i32 x, y, nWidth, nHeight; // from the top left of the client area; empty: nothing is to be seen
};

// One overlay. Main thread only.
struct VWWindowParms {
    void (*pfnUpdate)();                // called on every tick
    u32 dwAnchor;                       // OverlayAnchor
    u64 qwHideTick;                     // tick at which it hides itself; 0: none; HIDE_NEVER: never
    u32 bRelayout;                      // size and place are to be worked out on the next tick
    u32 bShown;                         // switched on
    OverlayRect rect;                   // of the last layout
    u32 nVersion;                       // raised with every new text
    char16_t szText[MESSAGE_CHARS];     // the text to show
    char16_t szLastText[MESSAGE_CHARS]; // the last one that was laid out; while equal nothing is done
};

extern VWWindowParms asOverlay[OVERLAYS];
extern u32 bMessagePinned; // the messages are switched on by hand

// What the overlays must know of their window. Sizes in the toolkit's pixels, which the margins are in too.
struct OverlayHost {
    i32 nWidth; // client area
    i32 nHeight;
    void *pvContext;
    // Size of an overlay's text with tabs expanded, wrapped at words to nWrapWidth.
    void (*pfnMeasure)(void *pvContext, u32 iOverlay, i32 nWrapWidth, i32 *pnWidth, i32 *pnHeight);
};

extern u32 nDisplayBits; // colour depth of the window's screen, set by the window

// All hidden, without texts.
void ResetOverlays();
// What the overlay shows now; stays until its next new text.
const RichDocument &OverlayDocument(u32 iOverlay);
// Runs what is due every OVERLAY_TICK_MS: new texts, hiding, layout.
void TickOverlays(const OverlayHost &host);
// Asks for a new layout of all, as after a new window size.
void RelayoutOverlays();
// Switches one on or off by hand.
void ToggleOverlay(u32 iOverlay);
// Size and place from the size of the text.
OverlayRect LayOutOverlay(const OverlayHost &host, u32 dwAnchor, i32 nTextWidth, i32 nTextHeight,
                          const OverlayRect &before);
