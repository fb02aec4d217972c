// Display.h -- is there a screen to show windows on
#pragma once

enum class DisplayKind { None, X11, Wayland };

// Tries the display that the environment names: the toolkit ends the process where there is none. X11 comes first,
// also under Wayland, where it means XWayland.
DisplayKind FindDisplay();
