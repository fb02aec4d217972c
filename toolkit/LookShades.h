// LookShades.h -- the shades of the standard controls, made from the user's two window colours
#pragma once

#include "platform/BaseTypes.h"

// All of the form 0x00BBGGRR. Whatever the user chose, lines and marks can be told from the window's background.
struct LookShades {
    u32 dwWindow; // the user's window background
    u32 dwText;   // the user's window text
    u32 dwInk;    // the window text as far as it can be told from the background: marks, focus
    u32 dwDisabled;
    u32 dwLine; // outlines
    u32 dwLineHover;
    u32 dwFaint;  // separators, tracks, outlines of what is disabled
    u32 dwButton; // fills
    u32 dwButtonHover;
    u32 dwButtonDown;
    u32 dwSelected; // behind selected text
    u32 dwSelectedText;
    u32 dwLink;
    u32 dwLinkVisited;
};

LookShades MakeLookShades(u32 dwWindow, u32 dwText);

// Behind a selected row on a list or a tree of these colours.
u32 SelectionShade(u32 dwBack, u32 dwText);

// Contrast of two colours after the web content accessibility guidelines: 1 (none) to 21 (black on white).
f32 ColorContrast(u32 dwOne, u32 dwOther);
// The wanted colour, moved as far towards black or white as that contrast with the background asks for; black or white
// where it cannot be reached.
u32 ReadableColor(u32 dwBack, u32 dwWanted, f32 fContrast);
