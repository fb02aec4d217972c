// LookShades.cpp -- the shades of the standard controls, made from the user's two window colours
#include "toolkit/LookShades.h"

#include "toolkit/Meters.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr u32 BLACK = 0x000000;
constexpr u32 WHITE = 0xFFFFFF;
constexpr u32 GRAY = 0x808080;
constexpr u32 LINK_BLUE = 0xFFB478;
constexpr u32 LINK_VIOLET = 0xFFA0C8;

constexpr f32 MARK_CONTRAST = 3; // the least for marks and large text, and for what is disabled
constexpr f32 TEXT_CONTRAST = 4.5f;
constexpr i32 MOVE_STEPS = 16;

f32 Linear(u32 dwByte)
{
    const f32 f = static_cast<f32>(dwByte & 0xFF) / 255;
    return f <= 0.04045f ? f / 12.92f : std::pow((f + 0.055f) / 1.055f, 2.4f);
}

f32 Luminance(u32 dwColor)
{
    return 0.2126f * Linear(dwColor) + 0.7152f * Linear(dwColor >> 8) + 0.0722f * Linear(dwColor >> 16);
}

} // namespace

f32 ColorContrast(u32 dwOne, u32 dwOther)
{
    const f32 fOne = Luminance(dwOne) + 0.05f;
    const f32 fOther = Luminance(dwOther) + 0.05f;
    return std::max(fOne, fOther) / std::min(fOne, fOther);
}

u32 ReadableColor(u32 dwBack, u32 dwWanted, f32 fContrast)
{
    const u32 dwEnd = ColorContrast(dwBack, WHITE) >= ColorContrast(dwBack, BLACK) ? WHITE : BLACK;
    for (i32 k = 0; k < MOVE_STEPS; k++) {
        const u32 dwMoved = LerpColor(dwWanted, dwEnd, k, MOVE_STEPS);
        if (ColorContrast(dwBack, dwMoved) >= fContrast)
            return dwMoved;
    }
    return dwEnd;
}

u32 SelectionShade(u32 dwBack, u32 dwText)
{
    return LerpColor(dwBack, ReadableColor(dwBack, dwText, MARK_CONTRAST), 32, 100);
}

LookShades MakeLookShades(u32 dwWindow, u32 dwText)
{
    LookShades look = {};
    look.dwWindow = dwWindow;
    look.dwText = dwText;
    look.dwInk = ReadableColor(dwWindow, dwText, MARK_CONTRAST);
    const auto shade = [&](i32 nPercent) { return LerpColor(dwWindow, look.dwInk, nPercent, 100); };
    look.dwDisabled = ReadableColor(dwWindow, GRAY, MARK_CONTRAST);
    look.dwLine = shade(42);
    look.dwLineHover = shade(65);
    look.dwFaint = shade(22);
    look.dwButton = shade(11);
    look.dwButtonHover = shade(20);
    look.dwButtonDown = shade(33);
    look.dwSelected = SelectionShade(dwWindow, dwText);
    look.dwSelectedText = ReadableColor(look.dwSelected, look.dwInk, TEXT_CONTRAST);
    look.dwLink = ReadableColor(dwWindow, LINK_BLUE, TEXT_CONTRAST);
    look.dwLinkVisited = ReadableColor(dwWindow, LINK_VIOLET, TEXT_CONTRAST);
    return look;
}
