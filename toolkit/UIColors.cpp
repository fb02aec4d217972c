// UIColors.cpp -- the table of the user's colours
#include "toolkit/UIColors.h"

#include "platform/MainThread.h"

namespace {

constexpr u32 COLOR_BITS = 0x00FFFFFF;

constexpr UIColorRow asDefault[UICOLORS] = {
    {u"Meter High", 0x5050FA},
    {u"Meter Low", 0x50FA50},
    {u"Timer Background", 0x501E1E},
    {u"Timer", 0xFA9664},
    {u"Tile On", 0x32E132},
    {u"Tile Off", 0x1E1EA0},
    {u"Window Text", 0x8CFFFF},
    {u"Window Background", 0x000000},
    {u"TreeView Background", 0x000000},
    {u"TreeView Text", 0xC0FF80},
    {u"TreeView Line", 0x6EDC40},
    {u"TreeView Root Text", 0x8CFFFF},
    {u"TreeView Planes Branch Text", 0x8CEBFF},
    {u"TreeView Plane Text", 0x8CC8FF},
    {u"TreeView Module Branch Text", 0xDCFFBE},
    {u"TreeView Module Type Text", 0x78FA78},
    {u"TreeView Module Text", 0x5AFF5A},
    {u"TreeView Control Text", 0x28FF28},
    {u"ListView Background", 0x000000},
    {u"ListView Text", 0x28FF28},
    {u"ListView Text Background", 0x000000},
};

} // namespace

UIColorRow UIColorTable[UICOLORS];
Listeners<void(u32 iRow)> UIColorListeners;

void SetDefaultUIColors()
{
    for (u32 i = 0; i < UICOLORS; i++) {
        UIColorTable[i].pszName = asDefault[i].pszName;
        SetUIColor(i, asDefault[i].dwColor);
    }
}

u32 SetUIColor(u32 iRow, u32 dwColor)
{
    ASSERT_MAIN_THREAD();
    if (iRow >= UICOLORS)
        return 0;
    const u32 dwOld = UIColorTable[iRow].dwColor;
    UIColorTable[iRow].dwColor = dwColor & COLOR_BITS;
    if (UIColorTable[iRow].dwColor != dwOld)
        UIColorListeners.Tell(iRow);
    return dwOld;
}
