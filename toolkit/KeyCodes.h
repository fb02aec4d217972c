// KeyCodes.h -- keys as the program knows them, whatever the toolkit calls them
#pragma once

#include "platform/BaseTypes.h"

// Virtual-key codes. A letter or a digit is its own code, in upper case.
enum KeyCode : u32 {
    KEY_NONE = 0,
    KEY_BACKSPACE = 0x08,
    KEY_TAB = 0x09,
    KEY_RETURN = 0x0D,
    KEY_ESCAPE = 0x1B,
    KEY_SPACE = 0x20,
    KEY_PAGE_UP = 0x21,
    KEY_PAGE_DOWN = 0x22,
    KEY_END = 0x23,
    KEY_HOME = 0x24,
    KEY_LEFT = 0x25,
    KEY_UP = 0x26,
    KEY_RIGHT = 0x27,
    KEY_DOWN = 0x28,
    KEY_INSERT = 0x2D,
    KEY_DELETE = 0x2E,
    KEY_PAD_PLUS = 0x6B, // of the numeric pad only
    KEY_PAD_MINUS = 0x6D,
    KEY_F1 = 0x70, // the others follow
};
constexpr u32 F_KEYS = 12;

enum KeyModifier : u32 { MODIFIER_CTRL = 1, MODIFIER_SHIFT = 2, MODIFIER_ALT = 4 };

struct KeyEvent {
    u32 dwKey;           // KeyCode
    bool bUp;            // released
    bool bRepeat;        // a key that is held down; the release that some systems report in between is one too
    bool bSystem;        // with Alt or the system's own key
    u32 dwModifiers = 0; // KeyModifier
};
