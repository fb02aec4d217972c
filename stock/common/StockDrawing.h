// StockDrawing.h -- what the stock drawing modules share: the canvas, soft strokes, even motion
//
// Strokes are drawn span by span in two halves: the shape gives a coverage and a place in the palette for every
// pixel of a span, the paint puts them on an indexed or on an RGB plane. All coordinates are pixels, y upwards,
// with whole numbers at pixel centres. Works for one call on one thread; nothing here outlives the call.
#ifndef VORTICADE_STOCK_DRAWING_H
#define VORTICADE_STOCK_DRAWING_H

#include "StockControls.h"
#include "StockPaint.h"

#include <algorithm>
#include <cmath>

#define DRAWING_PIXELS_MAX 16384 /* a bitmap side beyond this is no bitmap of the host */
#define DRAWING_STEP_MOST_MS 100 /* after a pause the picture goes on from where it stood */

// ---- The canvas

struct Canvas {
    uint8_t *pbBits; // bottom row
    int32_t nWidth, nHeight;
    size_t cbRow;
    bool bIndexed;
    int32_t nColors;         // 1 to PALETTE_COLORS_MAX
    const uint32_t *pColors; // null: none known yet
};

inline uint32_t *CanvasRow(const Canvas &canvas, int32_t y)
{
    return (uint32_t *)(void *)(canvas.pbBits + (size_t)y * canvas.cbRow);
}

// False if there is nothing to draw on.
inline bool OpenCanvas(Canvas *pCanvas, const PlaneInfo *ppi)
{
    const HostBitmap *hbm = ppi ? ppi->hbmDraw : nullptr;
    if (!hbm || !hbm->pBits || hbm->nBitsPerPixel != 32 || hbm->nWidth < 1 || hbm->nHeight < 1 ||
        hbm->nWidth > DRAWING_PIXELS_MAX || hbm->nHeight > DRAWING_PIXELS_MAX || hbm->cbRow < (uint64_t)hbm->nWidth * 4)
        return false;
    const bool bColorsKnown = ppi->nColors > 0 && ppi->lpColorTable;
    *pCanvas = {(uint8_t *)hbm->pBits,
                hbm->nWidth,
                hbm->nHeight,
                (size_t)hbm->cbRow,
                ppi->bIndexed != 0,
                ppi->nColors > 0 ? std::min(ppi->nColors, PALETTE_COLORS_MAX) : 256,
                bColorsKnown ? ppi->lpColorTable : nullptr};
    return true;
}

// ---- Motion: by time, never by frames

struct DrawClock {
    StockClock clock; // zero it in ModuleInitialize
    uint32_t nStepMs;
};

// Seconds to move on by, divided by the time scale. A further call within the same frame moves on as far as the
// frame did: several calls per frame hurry the motion, which is what their user asks for.
inline float StepSeconds(DrawClock *pClock, const PlaneInfo *ppi)
{
    const uint64_t qwTick = ppi->hdc ? ppi->hdc->qwTick : 0;
    if (!pClock->clock.bStarted || qwTick != pClock->clock.qwLastTick)
        pClock->nStepMs = ElapsedMs(&pClock->clock, qwTick, DRAWING_STEP_MOST_MS);
    return (float)pClock->nStepMs * 0.001f / (float)ReadTimeScale(ppi);
}

inline float WrapUnit(float f)
{
    f -= std::floor(f);
    return f < 1 ? f : 0;
}

// Advances a phase, counted in turns.
inline void AdvancePhase(float *pfPhase, float fTurnsPerSecond, float fSeconds)
{
    *pfPhase = WrapUnit(*pfPhase + fTurnsPerSecond * fSeconds);
}

// Glides towards a target, so that a control that jumps does not make the picture jump.
inline void Approach(float *pfValue, float fTarget, float fSeconds, float fTimeConstant)
{
    *pfValue += (fTarget - *pfValue) * (1 - std::exp(-fSeconds / fTimeConstant));
}

inline float SineTurn(float fTurns)
{
    return std::sin(fTurns * 6.2831853f);
}

inline float CosineTurn(float fTurns)
{
    return std::cos(fTurns * 6.2831853f);
}

// Up and down once per turn, 0 to 1, without a seam.
inline float FoldUnit(float fTurns)
{
    return 0.5f - 0.5f * CosineTurn(fTurns);
}

// ---- Paint

struct Paint {
    uint32_t dwMode;
    float fLayers; // weights are meant for 60 layers a second; this drawing stands for so many of them
};

// Overlays start on a fresh picture every frame: there one layer is all.
inline Paint MakePaint(const PlaneInfo *ppi, uint32_t dwMode, float fSeconds)
{
    return {dwMode, ppi->hbmDraw == ppi->hbmResolved ? 1 : fSeconds * 60};
}

// What one drawing has to cover so that thin layers add up alike at every frame rate.
inline float LayerWeight(const Paint &paint, float fWeight)
{
    if (paint.dwMode == PAINT_OVER)
        return 1 - std::pow(1 - fWeight, paint.fLayers);
    return paint.dwMode == PAINT_ADD ? std::min(fWeight * paint.fLayers, 1.0f) : fWeight;
}

// A colour wheel that rises out of black, for a plane whose colour modules have not spoken yet.
inline uint32_t SpareColor(float fPlace)
{
    const float fValue = 255 * std::min(1.0f, fPlace * 2);
    const auto Channel = [&](float fShift) { return (uint32_t)(fValue * FoldUnit(fPlace + fShift)); };
    return Channel(0.1f) | Channel(0.43f) << 8 | Channel(0.77f) << 16;
}

// fPlace: 0 to 1 over the palette.
inline uint32_t ColorAt(const Canvas &canvas, float fPlace)
{
    if (!canvas.pColors)
        return SpareColor(fPlace);
    return canvas.pColors[(int32_t)(fPlace * (float)(canvas.nColors - 1) + 0.5f)];
}

#define SPARE_COLORS 256

// The color wheel as a palette.
inline const uint32_t *SpareColors()
{
    struct Wheel {
        uint32_t adwColor[SPARE_COLORS];
    };
    static const Wheel wheel = [] {
        Wheel w;
        for (int32_t i = 0; i < SPARE_COLORS; i++)
            w.adwColor[i] = SpareColor((float)i * (1.0f / (SPARE_COLORS - 1)));
        return w;
    }();
    return wheel.adwColor;
}

inline void PaintSpan(const Canvas &canvas, const Paint &paint, int32_t x, int32_t y, int32_t nPixels,
                      const InkSpan &ink)
{
    uint32_t *pPixel = CanvasRow(canvas, y) + x;
    if (canvas.bIndexed)
        PaintIndices(pPixel, nPixels, paint.dwMode, canvas.nColors - 1, ink);
    else if (canvas.pColors)
        PaintColors(pPixel, nPixels, paint.dwMode, canvas.pColors, canvas.nColors - 1, ink);
    else
        PaintColors(pPixel, nPixels, paint.dwMode, SpareColors(), SPARE_COLORS - 1, ink);
}

// ---- Strokes: curves as chains of soft segments

struct StrokePoint {
    float x, y;
    float fRadius; // pixels from the middle of the stroke to where it has faded out
    float fPlace;  // 0 to 1 over the palette
    float fWeight; // coverage in the middle, 0 to 1
};

// Two neighbouring points and the planes that cut the segment off from its neighbours: a pixel belongs to the
// segment whose planes it lies between, so that no pixel of a bend is painted twice.
struct StrokeSegment {
    StrokePoint a, b;
    float xFrontNormal, yFrontNormal; // both 0: an open end with a round cap
    float xBackNormal, yBackNormal;
    float fHardness; // 1: all glow; 8: a firm body with a smooth edge
};

// Coverage at a pixel: a bell over the squared distance, cut off at 1 (no root, smooth to the last pixel).
STOCK_WIDE static void ShadeSegment(const StrokeSegment seg, float x, float y, int32_t nPixels,
                                    InkSpan *__restrict pInk)
{
    const float dx = seg.b.x - seg.a.x, dy = seg.b.y - seg.a.y;
    const float fPerLength2 = 1 / std::max(dx * dx + dy * dy, 1e-6f);
    const float fRadiusStep = seg.b.fRadius - seg.a.fRadius, fPlaceStep = seg.b.fPlace - seg.a.fPlace;
    const float fWeightStep = seg.b.fWeight - seg.a.fWeight;
    for (int32_t i = 0; i < nPixels; i++) {
        const float xa = x + (float)i - seg.a.x, ya = y - seg.a.y;
        const float fAlong = std::min(std::max((xa * dx + ya * dy) * fPerLength2, 0.0f), 1.0f);
        const float xe = xa - fAlong * dx, ye = ya - fAlong * dy;
        const float fRadius = seg.a.fRadius + fAlong * fRadiusStep;
        const float fBell = std::max(1 - (xe * xe + ye * ye) / (fRadius * fRadius), 0.0f);
        const float fFront = xa * seg.xFrontNormal + ya * seg.yFrontNormal;
        const float fBack = (xa - dx) * seg.xBackNormal + (ya - dy) * seg.yBackNormal;
        const float fInside =
            fFront >= 0 && (fBack < 0 || (seg.xBackNormal == 0 && seg.yBackNormal == 0)) ? 1.0f : 0.0f;
        pInk->afCoverage[i] =
            std::min(fBell * fBell * seg.fHardness, 1.0f) * (seg.a.fWeight + fAlong * fWeightStep) * fInside;
        pInk->afPlace[i] = seg.a.fPlace + fAlong * fPlaceStep;
    }
}

// Narrows a span to one side of a line through a point, with a pixel to spare.
inline void ClipSpan(float *pxLow, float *pxHigh, float x, float y, float xNormal, float yNormal)
{
    if (std::fabs(xNormal) < 0.01f * std::fabs(yNormal) || xNormal == 0)
        return;
    const float xCut = x + y * yNormal / xNormal;
    if (xNormal > 0)
        *pxLow = std::max(*pxLow, xCut - 1);
    else
        *pxHigh = std::min(*pxHigh, xCut + 1);
}

// The pixels of row y that the segment can reach; false if none.
inline bool SegmentSpan(const StrokeSegment &seg, const Canvas &canvas, float y, int32_t *pxFirst, int32_t *pxEnd)
{
    const float fReach = std::max(seg.a.fRadius, seg.b.fRadius);
    const float dx = seg.b.x - seg.a.x, dy = seg.b.y - seg.a.y, fLength = std::sqrt(dx * dx + dy * dy);
    float xLow = std::min(seg.a.x, seg.b.x) - fReach, xHigh = std::max(seg.a.x, seg.b.x) + fReach;
    if (std::fabs(dy) > 0.05f * fLength) {
        const float xMiddle = seg.a.x + (y - seg.a.y) * dx / dy, fHalf = fReach * fLength / std::fabs(dy);
        xLow = std::max(xLow, xMiddle - fHalf);
        xHigh = std::min(xHigh, xMiddle + fHalf);
    }
    ClipSpan(&xLow, &xHigh, seg.a.x, seg.a.y - y, seg.xFrontNormal, seg.yFrontNormal);
    ClipSpan(&xLow, &xHigh, seg.b.x, seg.b.y - y, -seg.xBackNormal, -seg.yBackNormal);
    if (!(xHigh >= 0 && xLow <= (float)(canvas.nWidth - 1) && xLow <= xHigh))
        return false;
    *pxFirst = (int32_t)std::max(xLow, 0.0f);
    *pxEnd = (int32_t)std::min(xHigh, (float)(canvas.nWidth - 1)) + 1;
    return true;
}

inline void PaintSegment(const Canvas &canvas, const Paint &paint, const StrokeSegment &seg)
{
    const float fReach = std::max(seg.a.fRadius, seg.b.fRadius);
    const float yLow = std::min(seg.a.y, seg.b.y) - fReach, yHigh = std::max(seg.a.y, seg.b.y) + fReach;
    if (!(yHigh >= 0 && yLow <= (float)(canvas.nHeight - 1)))
        return;
    const int32_t yEnd = (int32_t)std::min(yHigh, (float)(canvas.nHeight - 1)) + 1;
    InkSpan ink;
    for (int32_t y = (int32_t)std::max(yLow, 0.0f); y < yEnd; y++) {
        int32_t x, xEnd;
        if (!SegmentSpan(seg, canvas, (float)y, &x, &xEnd))
            continue;
        for (; x < xEnd; x += DRAWING_SPAN) {
            const int32_t nPixels = std::min(xEnd - x, DRAWING_SPAN);
            ShadeSegment(seg, (float)x, (float)y, nPixels, &ink);
            PaintSpan(canvas, paint, x, y, nPixels, ink);
        }
    }
}

// Limits a point to what can be drawn and what the arithmetic bears; false for what is no number.
inline bool LimitPoint(StrokePoint *pPoint)
{
    if (!std::isfinite(pPoint->x) || !std::isfinite(pPoint->y) || !std::isfinite(pPoint->fRadius))
        return false;
    pPoint->x = std::clamp(pPoint->x, -4.0f * DRAWING_PIXELS_MAX, 4.0f * DRAWING_PIXELS_MAX);
    pPoint->y = std::clamp(pPoint->y, -4.0f * DRAWING_PIXELS_MAX, 4.0f * DRAWING_PIXELS_MAX);
    // A stroke thinner than a pixel pair would fall between the pixels: keep it wide, make it faint.
    const float fThinnest = 1.4f;
    pPoint->fWeight = std::clamp(pPoint->fWeight * std::min(1.0f, pPoint->fRadius / fThinnest), 0.0f, 1.0f);
    pPoint->fRadius = std::clamp(pPoint->fRadius, fThinnest, (float)DRAWING_PIXELS_MAX);
    pPoint->fPlace = std::clamp(pPoint->fPlace, 0.0f, 1.0f);
    return true;
}

// A led end: its outermost point only tells where the curve comes from or goes to. Curves that each begin with the
// last three points of the one before join there without a gap and without an overlap.
enum { ENDS_ROUND = 0, ENDS_LED_START = 1, ENDS_LED_END = 2, ENDS_LED = 3, ENDS_CLOSED = 4 };

// The direction in which a curve runs through point i.
inline void CurveTangent(const StrokePoint *pPoints, int32_t nPoints, int32_t i, uint32_t dwEnds, float *px, float *py)
{
    const bool bClosed = dwEnds == ENDS_CLOSED;
    const int32_t iBefore = i > 0 ? i - 1 : bClosed ? nPoints - 2 : 0;
    const int32_t iAfter = i < nPoints - 1 ? i + 1 : bClosed ? 1 : nPoints - 1;
    *px = pPoints[iAfter].x - pPoints[iBefore].x;
    *py = pPoints[iAfter].y - pPoints[iBefore].y;
}

// Paints a curve through the points, which it limits first. Closed: the last point repeats the first one.
inline void PaintCurve(const Canvas &canvas, const Paint &paint, StrokePoint *pPoints, int32_t nPoints, float fHardness,
                       uint32_t dwEnds)
{
    for (int32_t i = 0; i < nPoints; i++)
        if (LimitPoint(&pPoints[i]))
            pPoints[i].fWeight = LayerWeight(paint, pPoints[i].fWeight);
        else
            return;
    const int32_t iFirst = dwEnds & ENDS_LED_START ? 1 : 0, iEnd = nPoints - (dwEnds & ENDS_LED_END ? 2 : 1);
    for (int32_t i = iFirst; i < iEnd; i++) {
        StrokeSegment seg = {pPoints[i], pPoints[i + 1], 0, 0, 0, 0, fHardness};
        if (i > 0 || dwEnds == ENDS_CLOSED)
            CurveTangent(pPoints, nPoints, i, dwEnds, &seg.xFrontNormal, &seg.yFrontNormal);
        if (i + 2 < nPoints || dwEnds == ENDS_CLOSED)
            CurveTangent(pPoints, nPoints, i + 1, dwEnds, &seg.xBackNormal, &seg.yBackNormal);
        PaintSegment(canvas, paint, seg);
    }
}

#endif
