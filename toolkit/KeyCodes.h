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
    KEY_LEFT = 0x25,
    KEY_UP = 0x26,
    KEY_RIGHT = 0x27,
    KEY_DOWN = 0x28,
    KEY_PAD_PLUS = 0x6B, // of the numeric pad only
    KEY_PAD_MINUS = 0x6D,
};

struct KeyEvent {
    u32 dwKey;    // KeyCode
    bool bUp;     // released
    bool bRepeat; // a key that is held down; the release that some systems report in between is one too
    bool bSystem; // with Alt or the system's own key
};
