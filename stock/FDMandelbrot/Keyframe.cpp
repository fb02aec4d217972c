// Keyframe.cpp -- iterates the points of a keyframe and magnifies it
#include "Keyframe.h"

#define ESCAPE2 256.0 // squared radius beyond which the smooth count is exact enough

void FreeKeyframe(Keyframe *pKeyframe)
{
    free(pKeyframe->pfValue);
    *pKeyframe = {};
}

bool FitKeyframe(Keyframe *pKeyframe, int32_t nWidth, int32_t nHeight, float fDetail)
{
    const double fPixels = (double)nWidth * nHeight * (double)(fDetail * fDetail);
    const double fScale = (double)fDetail * std::min(1.0, std::sqrt(KEYFRAME_PIXELS_MAX / fPixels));
    const int32_t nBatches = (int32_t)(nWidth * fScale) / KEYFRAME_BATCH + 1;
    const int32_t nColumns = nBatches * KEYFRAME_BATCH, nRows = std::max(2, (int32_t)(nHeight * fScale));
    if (pKeyframe->nWidth == nColumns && pKeyframe->nHeight == nRows)
        return true;
    FreeKeyframe(pKeyframe);
    pKeyframe->pfValue = (float *)calloc((size_t)nColumns * (size_t)nRows, sizeof(float));
    if (!pKeyframe->pfValue)
        return false;
    pKeyframe->nWidth = nColumns;
    pKeyframe->nHeight = nRows;
    pKeyframe->nBatches = nBatches * nRows;
    return true;
}

void BeginKeyframe(Keyframe *pKeyframe, const Place &place, float fOctave)
{
    pKeyframe->place = place;
    pKeyframe->fOctave = fOctave;
    pKeyframe->fStep = 4 * std::exp2(-(double)fOctave) / std::min(pKeyframe->nWidth, pKeyframe->nHeight);
    pKeyframe->nIterations = 130 + (int32_t)(place.fPerOctave * std::max(fOctave, 0.0f));
    pKeyframe->iNextBatch = 0;
    pKeyframe->fEffort = 0;
}

struct PointBatch {
    double ax[KEYFRAME_BATCH], ay[KEYFRAME_BATCH];
    double axConstant[KEYFRAME_BATCH];
    double afCount[KEYFRAME_BATCH], afEscape2[KEYFRAME_BATCH];
    double yConstant;
};

// A point that has escaped is carried on: it only grows, and no test of it turns true again.
static inline void Iterate(PointBatch &b, int32_t nSteps)
{
    for (int32_t iStep = 0; iStep < nSteps; iStep++)
        for (int32_t i = 0; i < KEYFRAME_BATCH; i++) {
            const double x = b.ax[i], y = b.ay[i], x2 = x * x, y2 = y * y, r2 = x2 + y2;
            b.afCount[i] += r2 < ESCAPE2 ? 1.0 : 0.0;
            b.afEscape2[i] = b.afEscape2[i] < ESCAPE2 ? r2 : b.afEscape2[i];
            b.ay[i] = (x + x) * y + b.yConstant;
            b.ax[i] = x2 - y2 + b.axConstant[i];
        }
}

static inline bool AllEscaped(const PointBatch &b)
{
    double fLeast = ESCAPE2;
    for (int32_t i = 0; i < KEYFRAME_BATCH; i++)
        fLeast = b.afEscape2[i] < fLeast ? b.afEscape2[i] : fLeast;
    return fLeast >= ESCAPE2;
}

// Iterates a batch; returns the steps that it took.
STOCK_WIDE static int32_t RunBatch(PointBatch *pBatch, int32_t nIterations)
{
    PointBatch b = *pBatch;
    int32_t nSteps = 0;
    for (; nSteps < nIterations && !AllEscaped(b); nSteps += 16)
        Iterate(b, 16);
    *pBatch = b;
    return nSteps;
}

static float ValueOf(double fCount, double fEscape2)
{
    if (!(fEscape2 >= ESCAPE2))
        return KEYFRAME_INSIDE;
    const double fSmooth = fCount + 1 - std::log2(std::log2(std::min(fEscape2, 1e300)) * 0.125);
    return (float)std::sqrt(std::max(fSmooth, 0.0));
}

void WorkOut(Keyframe *pKeyframe, double fEffort)
{
    const int32_t nInRow = pKeyframe->nWidth / KEYFRAME_BATCH;
    const double fUntil = pKeyframe->fEffort + fEffort;
    for (; pKeyframe->iNextBatch < pKeyframe->nBatches && pKeyframe->fEffort < fUntil; pKeyframe->iNextBatch++) {
        const int32_t iRow = pKeyframe->iNextBatch / nInRow, iColumn = pKeyframe->iNextBatch % nInRow * KEYFRAME_BATCH;
        PointBatch b = {};
        b.yConstant = pKeyframe->place.y + (iRow - 0.5 * (pKeyframe->nHeight - 1)) * pKeyframe->fStep;
        for (int32_t i = 0; i < KEYFRAME_BATCH; i++)
            b.axConstant[i] = pKeyframe->place.x + (iColumn + i - 0.5 * (pKeyframe->nWidth - 1)) * pKeyframe->fStep;
        pKeyframe->fEffort += KEYFRAME_BATCH * RunBatch(&b, pKeyframe->nIterations);
        float *pf = pKeyframe->pfValue + (size_t)iRow * (size_t)pKeyframe->nWidth + iColumn;
        for (int32_t i = 0; i < KEYFRAME_BATCH; i++)
            pf[i] = ValueOf(b.afCount[i], b.afEscape2[i]);
    }
}

// ---- Showing

void FreeView(KeyframeView *pView)
{
    free(pView->piColumn);
    free(pView->pfPast);
    free(pView->pfRow);
    *pView = {};
}

static bool FitView(KeyframeView *pView, int32_t nPixels, int32_t nPoints)
{
    if (pView->nRoomPixels == nPixels && pView->nRoomPoints >= nPoints)
        return true;
    FreeView(pView);
    pView->piColumn = (int32_t *)calloc((size_t)nPixels, sizeof(int32_t));
    pView->pfPast = (float *)calloc((size_t)nPixels, sizeof(float));
    pView->pfRow = (float *)calloc((size_t)nPoints, sizeof(float));
    if (!pView->piColumn || !pView->pfPast || !pView->pfRow) {
        FreeView(pView);
        return false;
    }
    pView->nRoomPixels = nPixels;
    pView->nRoomPoints = nPoints;
    return true;
}

// Where pixel i of nPixels falls among nPoints, at most nPoints - 1.
static float PointOfPixel(int32_t i, int32_t nPixels, int32_t nPoints, float fZoom)
{
    const float f = (((float)i + 0.5f) / (float)nPixels - 0.5f) / fZoom + 0.5f;
    return std::clamp(f * (float)nPoints - 0.5f, 0.0f, (float)nPoints - 1.001f);
}

bool PrepareView(KeyframeView *pView, const Keyframe &keyframe, const Canvas &canvas, float fZoom)
{
    if (!keyframe.pfValue || !FitView(pView, canvas.nWidth, keyframe.nWidth))
        return false;
    for (int32_t i = 0; i < canvas.nWidth; i++) {
        const float f = PointOfPixel(i, canvas.nWidth, keyframe.nWidth, fZoom);
        pView->piColumn[i] = std::min((int32_t)f, keyframe.nWidth - 2);
        pView->pfPast[i] = f - (float)pView->piColumn[i];
    }
    return true;
}

STOCK_WIDE static void MixRows(const float *pfBelow, const float *pfAbove, float fShare, int32_t n,
                               float *__restrict pf)
{
    for (int32_t i = 0; i < n; i++)
        pf[i] = pfBelow[i] + (pfAbove[i] - pfBelow[i]) * fShare;
}

void ShowRow(const KeyframeView &view, const Keyframe &keyframe, const Canvas &canvas, float fZoom, int32_t y,
             const TurnColors &colors, uint32_t *pPixel)
{
    const float f = PointOfPixel(y, canvas.nHeight, keyframe.nHeight, fZoom);
    const int32_t iRow = std::min((int32_t)f, keyframe.nHeight - 2);
    const int32_t iFirst = view.piColumn[0], n = view.piColumn[canvas.nWidth - 1] + 2 - iFirst;
    const float *pfBelow = keyframe.pfValue + (size_t)iRow * (size_t)keyframe.nWidth + iFirst;
    MixRows(pfBelow, pfBelow + keyframe.nWidth, f - (float)iRow, n, view.pfRow);
    const FieldColors &table = *colors.pColors;
    const float fSteps = colors.fSpread * FIELD_STEPS;
    for (int32_t i = 0; i < canvas.nWidth; i++) {
        const float *pf = view.pfRow + (view.piColumn[i] - iFirst);
        const float fValue = pf[0] + (pf[1] - pf[0]) * view.pfPast[i];
        const int32_t nStep = (int32_t)(fValue * fSteps) & (FIELD_STEPS - 1);
        const uint32_t dwColor = fValue < 0 ? colors.dwInside : table.adwPixel[nStep];
        pPixel[i] = (pPixel[i] & table.dwKept) | dwColor;
    }
}
