// Overlays.cpp -- the five translucent texts over the picture: when they show, where they sit
#include "output/Overlays.h"

#include "output/FrameStats.h"
#include "output/OverlayTexts.h"
#include "platform/Clock.h"
#include "platform/Text.h"

#include <algorithm>

namespace {

constexpr i32 NARROW_EXTRA = 60; // a narrow text gets so much more room

// clang-format off
constexpr struct {
    void (*pfnUpdate)();
    u32 dwAnchor;
} asOverlayRow[OVERLAYS] = {
    {UpdatePresetName, ANCHOR_TOP_CENTER},
    {UpdateKeyHelp, ANCHOR_BOTTOM_RIGHT},
    {UpdateFrameRate, ANCHOR_TOP_RIGHT},
    {UpdateMetrics, ANCHOR_TOP_LEFT},
    {UpdateMessages, ANCHOR_BOTTOM_LEFT},
};
// clang-format on

// Place of an anchor in halves of the room that is left.
struct AnchorRow {
    u32 dwAnchor;
    i32 nRight, nDown;
};
constexpr AnchorRow asAnchor[] = {
    {ANCHOR_TOP_LEFT, 0, 0},  {ANCHOR_BOTTOM_LEFT, 0, 2},   {ANCHOR_TOP_CENTER, 1, 0},   {ANCHOR_CENTER, 1, 1},
    {ANCHOR_TOP_RIGHT, 2, 0}, {ANCHOR_BOTTOM_CENTER, 1, 2}, {ANCHOR_BOTTOM_RIGHT, 2, 2},
};

struct OverlaySize {
    i32 nWidth, nHeight;
};

// A narrow text gets more room, a wide one as much area in the window's width; what is too high is not shown.
OverlaySize SizeOverlay(const OverlayHost &host, i32 nTextWidth, i32 nTextHeight)
{
    const i32 W = host.nWidth;
    i64 w = nTextWidth, h = static_cast<i64>(nTextHeight) + 2 * OVERLAY_MARGIN_Y;
    if (w > W) {
        h = h * w / std::max(W, 1);
        w = W;
    } else if (w < W / 3) {
        w = std::min<i64>(W / 3, w + NARROW_EXTRA);
    }
    if (h > host.nHeight)
        return {0, 0};
    return {static_cast<i32>(w), static_cast<i32>(h)};
}

void Hide(VWWindowParms *pvw)
{
    pvw->bRelayout = pvw->bShown = 0;
    pvw->qwHideTick = 0;
}

void RunOverlayTick(VWWindowParms *pvw, u32 iOverlay, const OverlayHost &host)
{
    pvw->pfnUpdate();
    if (pvw->qwHideTick && pvw->qwHideTick < TickCount()) {
        Hide(pvw);
        return;
    }
    if (!pvw->bShown && pvw->qwHideTick)
        pvw->bShown = pvw->bRelayout = 1;
    if (!pvw->bShown || !pvw->bRelayout)
        return;
    i32 nWidth = 0, nHeight = 0;
    host.pfnMeasure(host.pvContext, iOverlay, host.nWidth / 2, &nWidth, &nHeight);
    pvw->rect = LayOutOverlay(host, pvw->dwAnchor, nWidth, nHeight, pvw->rect);
    pvw->bRelayout = 0;
}

} // namespace

VWWindowParms asOverlay[OVERLAYS];
u32 bMessagePinned = 0;
u32 nDisplayBits = 32;

void ResetOverlays()
{
    for (u32 i = 0; i < OVERLAYS; i++) {
        asOverlay[i] = {};
        asOverlay[i].pfnUpdate = asOverlayRow[i].pfnUpdate;
        asOverlay[i].dwAnchor = asOverlayRow[i].dwAnchor;
    }
    bMessagePinned = 0;
    ForgetOverlayTexts();
}

void TickOverlays(const OverlayHost &host)
{
    for (u32 i = 0; i < OVERLAYS; i++)
        RunOverlayTick(&asOverlay[i], i, host);
}

void RelayoutOverlays()
{
    for (VWWindowParms &vw : asOverlay)
        vw.bRelayout = 1;
}

// Switched off by hand, an overlay forgets that it was to stay for a while: otherwise its next tick would bring it
// back.
void ToggleOverlay(u32 iOverlay)
{
    VWWindowParms *pvw = &asOverlay[iOverlay];
    pvw->bShown = !pvw->bShown;
    pvw->bRelayout = 1;
    pvw->qwHideTick = 0;
    if (iOverlay == OVERLAY_MESSAGES)
        bMessagePinned = pvw->bShown;
    if (iOverlay == OVERLAY_FRAME_RATE && pvw->bShown)
        ResetFrameStats();
}

OverlayRect LayOutOverlay(const OverlayHost &host, u32 dwAnchor, i32 nTextWidth, i32 nTextHeight,
                          const OverlayRect &before)
{
    const OverlaySize size = SizeOverlay(host, nTextWidth, nTextHeight);
    const i32 xRight = host.nWidth - size.nWidth, yBottom = host.nHeight - size.nHeight;
    for (const AnchorRow &row : asAnchor)
        if (row.dwAnchor == dwAnchor)
            return {xRight * row.nRight / 2, yBottom * row.nDown / 2, size.nWidth, size.nHeight};
    return {before.x, before.y, size.nWidth, size.nHeight};
}
