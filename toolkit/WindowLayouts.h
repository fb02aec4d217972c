// WindowLayouts.h -- the windows of the program by name: how one is made, whether it is open, where it stands
#pragma once

#include "platform/BaseTypes.h"

#include <string_view>
#include <type_traits>

constexpr u32 WINDOW_NAME_CHARS = 64; // the terminating 0 included

// Names of windows that others ask for.
constexpr const char16_t *MAIN_WINDOW = u"Main";
constexpr const char16_t *PALETTE_WINDOW = u"Palette"; // the colour window
constexpr const char16_t *RECORDING_DIALOG = u"RecordingOptions";

struct WindowRect {
    i32 left, top, right, bottom;
};

// The record that layout files hold, byte for byte.
struct WINDOWPLACEMENT {
    u32 length; // 44; 0: nobody has placed the window yet
    u32 flags;
    u32 showCmd;
    i32 xMin, yMin;              // of the minimised window
    i32 xMax, yMax;              // of the maximised one
    WindowRect rcNormalPosition; // of the frame that the user sees
};
static_assert(sizeof(WINDOWPLACEMENT) == 44 && std::is_trivially_copyable_v<WINDOWPLACEMENT>);

// What can be done with a window of some toolkit; toolkit/WindowLayouts_qt.h has those of ours.
struct WindowFunctions {
    void (*pfnShow)(void *hWnd, u32 bFocus);        // also brings it to the front when it gets the focus
    void (*pfnClose)(void *hWnd);                   // as its cancel button does, which may be refused
    u32 (*pfnGetRect)(void *hWnd, WindowRect *prc); // 0: not in its normal state now
    void (*pfnSetRect)(void *hWnd, const WindowRect &rc);
};

enum class WindowUse : u32 {
    Main,   // made and ended by the program itself
    Child,  // its command opens and closes it
    Dialog, // its command opens it or brings it to the front; no part of a layout
};

// A row of the table of windows. Lives as long as the program.
struct WindowKind {
    const char16_t *pszName;
    WindowUse eUse;
    void *(*pfnMake)(
        void *pvOwner); // returns it unshown; it reports its end. Null for Main, or where it is made elsewhere
    const WindowFunctions *pFunctions;
};

struct WindowLayout {
    char16_t szName[WINDOW_NAME_CHARS]; // key, compared exactly
    WINDOWPLACEMENT wp;                 // as it was last seen in its normal state
    u32 bOpen;                          // is open, or is to be
    u32 bMarked;                        // its command shows a check mark
    u32 bTracking;                      // exists and has been placed; its moves are followed
    void *hWnd;                         // null: there is none
    const WindowKind *pKind;            // null: a name that only a layout file knows
};

// All windows that the program knows of, in the order in which layouts are written. [main-thread, like all of this]
struct WindowLayoutTable {
    WindowLayout *lpLayout; // moves when a record is added
    u32 nLayouts;
    u32 nLayoutCapacity;
};
extern WindowLayoutTable WindowLayouts;

// First hit, or null.
WindowLayout *FindWindowLayout(std::u16string_view name);
// The record of that name, added at the end if it is new. A longer name is cut.
WindowLayout *AddWindowLayout(std::u16string_view name);
void RegisterWindow(const WindowKind &kind);
// Forgets all of them; for tests.
void ForgetWindowLayouts();

// What a command does with the window of that name, by its use. A child that exists is closed and loses its mark, else
// it is made and marked. A dialog is made or brought to the front; either way it has the focus. Nothing for other
// names.
void RunWindowCommand(std::u16string_view name, void *pvOwner);
// Made if need be, and shown; without the focus where bFocus is 0. Returns it, or null.
void *OpenWindow(std::u16string_view name, void *pvOwner, u32 bFocus);
// For check marks. The mark is the command's: a window that was closed by its own button keeps it, and is opened again.
u32 WindowIsMarked(std::u16string_view name);
u32 WindowIsOpen(std::u16string_view name);

// Told by the window, or by whoever follows it.
void WindowMade(std::u16string_view name, void *hWnd); // puts it where it stood last
void WindowMoved(void *hWnd);
void WindowClosed(void *hWnd); // may be shown again
void WindowGone(void *hWnd);
