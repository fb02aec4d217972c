// PictureView.cpp -- fits a picture to the canvas and samples it, a row at a time
#include "PictureView.h"

void FreePictureView(PictureView *pView)
{
    free(pView->piLeft);
    free(pView->pnPast);
    free(pView->pdwRow);
    *pView = {};
}

static bool FitRoom(PictureView *pView, int32_t nPixels, int32_t nPoints)
{
    if (pView->nRoomPixels == nPixels && pView->nRoomPoints >= nPoints)
        return true;
    FreePictureView(pView);
    pView->piLeft = (int32_t *)calloc((size_t)nPixels, sizeof(int32_t));
    pView->pnPast = (uint32_t *)calloc((size_t)nPixels, sizeof(uint32_t));
    pView->pdwRow = (uint32_t *)calloc((size_t)nPoints, sizeof(uint32_t));
    if (!pView->piLeft || !pView->pnPast || !pView->pdwRow) {
        FreePictureView(pView);
        return false;
    }
    pView->nRoomPixels = nPixels;
    pView->nRoomPoints = nPoints;
    return true;
}

// One direction: point = start + pixel * fStep.
struct AxisMap {
    float fStart, fStep;
};

// fStep: points to a pixel, before zooming.
static AxisMap MapAxis(const PicturePose &pose, float fStep, float fPan, int32_t nPixels, int32_t nPoints)
{
    const float fStepZoomed = fStep / pose.fZoom, fShown = fStepZoomed * (float)nPixels;
    // A tile may go as far as it likes, a picture no further than its edge comes to that of the canvas.
    const float fWay = pose.dwFit == FIT_TILE ? 0.5f * (float)nPoints : 0.5f * std::fabs((float)nPoints - fShown);
    const float fMiddle = 0.5f * (float)nPoints + fPan * fWay;
    return {fMiddle - 0.5f * fShown + 0.5f * fStepZoomed - 0.5f, fStepZoomed};
}

static float StepOfFit(const PicturePose &pose, float xStep, float yStep)
{
    if (pose.dwFit == FIT_FILL)
        return std::min(xStep, yStep);
    return pose.dwFit == FIT_TILE ? 2 * std::min(xStep, yStep) : std::max(xStep, yStep);
}

// The point to the left of a place, and how far past it the place is; -1: outside.
static int32_t PointAt(float f, int32_t nPoints, bool bTiled, uint32_t *pnPast)
{
    if (bTiled)
        f -= std::floor(f / (float)nPoints) * (float)nPoints;
    else if (f < -0.5f || f > (float)nPoints - 0.5f)
        return -1;
    f = std::clamp(f, 0.0f, bTiled ? (float)nPoints : (float)(nPoints - 1));
    const int32_t i = std::min((int32_t)f, nPoints - 1);
    *pnPast = (uint32_t)std::min((f - (float)i) * 256, 256.0f);
    return i;
}

bool PreparePictureView(PictureView *pView, const PictureLevels &levels, const PicturePose &pose, const Canvas &canvas)
{
    if (levels.nLevels < 1)
        return false;
    float xStep = (float)levels.aLevel[0].nWidth / (float)canvas.nWidth;
    float yStep = (float)levels.aLevel[0].nHeight / (float)canvas.nHeight;
    if (pose.dwFit != FIT_STRETCH)
        xStep = yStep = StepOfFit(pose, xStep, yStep);
    // The level goes by the fit alone: one that changed while the zoom breathes would be seen to change.
    int32_t iLevel = 0;
    while (iLevel + 1 < levels.nLevels && std::max(xStep, yStep) > 1.5f * (float)(1 << iLevel))
        iLevel++;
    const Picture &picture = levels.aLevel[iLevel];
    if (!FitRoom(pView, canvas.nWidth, picture.nWidth + 1))
        return false;
    xStep *= (float)picture.nWidth / (float)levels.aLevel[0].nWidth;
    yStep *= (float)picture.nHeight / (float)levels.aLevel[0].nHeight;
    pView->pPicture = &picture;
    pView->bTiled = pose.dwFit == FIT_TILE;
    const AxisMap x = MapAxis(pose, xStep, pose.xPan, canvas.nWidth, picture.nWidth);
    const AxisMap y = MapAxis(pose, yStep, pose.yPan, canvas.nHeight, picture.nHeight);
    for (int32_t i = 0; i < canvas.nWidth; i++)
        pView->piLeft[i] = PointAt(x.fStart + (float)i * x.fStep, picture.nWidth, pView->bTiled, &pView->pnPast[i]);
    pView->yStart = y.fStart;
    pView->yStep = y.fStep;
    return true;
}

STOCK_WIDE static void MixPointRows(const uint32_t *pBelow, const uint32_t *pAbove, uint32_t nShare, int32_t n,
                                    uint32_t *__restrict pdw)
{
    for (int32_t i = 0; i < n; i++)
        pdw[i] = MixPixels(pBelow[i], pAbove[i], nShare);
}

void SampleRow(const PictureView &view, const Canvas &canvas, int32_t y, uint32_t *pdwColor)
{
    const Picture &picture = *view.pPicture;
    uint32_t nPast = 0;
    const int32_t iRow = PointAt(view.yStart + (float)y * view.yStep, picture.nHeight, view.bTiled, &nPast);
    if (iRow < 0) {
        std::fill_n(pdwColor, canvas.nWidth, 0u);
        return;
    }
    const int32_t iNext = iRow + 1 < picture.nHeight ? iRow + 1 : view.bTiled ? 0 : iRow;
    const auto Row = [&](int32_t i) { return picture.adwPixel.data() + (size_t)i * (size_t)picture.nWidth; };
    MixPointRows(Row(iRow), Row(iNext), nPast, picture.nWidth, view.pdwRow);
    view.pdwRow[picture.nWidth] = view.pdwRow[view.bTiled ? 0 : picture.nWidth - 1];
    for (int32_t i = 0; i < canvas.nWidth; i++) {
        const int32_t iLeft = view.piLeft[i], iPoint = iLeft < 0 ? 0 : iLeft;
        const uint32_t dwColor = MixPixels(view.pdwRow[iPoint], view.pdwRow[iPoint + 1], view.pnPast[i]);
        pdwColor[i] = iLeft < 0 ? 0 : dwColor;
    }
}
