// EdgeMap.cpp -- levels of the picture, differences between neighbours, and the blur of these
#include "EdgeMap.h"

#define EDGE_REDUCE 4

void FreeEdgeMap(EdgeMap *pMap)
{
    free(pMap->pbLevels);
    free(pMap->pwLine);
    FreeScratch(&pMap->reduced);
    FreeBlurRoom(&pMap->room);
    *pMap = {};
}

static size_t LevelStride(const EdgeMap &map)
{
    return (size_t)map.nWidth + 2 * EDGE_REACH_MOST;
}

static uint8_t *LevelRow(const EdgeMap &map, int32_t y)
{
    return map.pbLevels + (size_t)y * LevelStride(map) + EDGE_REACH_MOST;
}

static uint8_t *CoverRow(const EdgeMap &map, int32_t y)
{
    return map.pbCover + (size_t)y * (size_t)map.nWidth;
}

bool FitEdgeMap(EdgeMap *pMap, const Canvas &canvas)
{
    if (pMap->nWidth == canvas.nWidth && pMap->nHeight == canvas.nHeight)
        return true;
    FreeEdgeMap(pMap);
    pMap->nWidth = canvas.nWidth;
    pMap->nHeight = canvas.nHeight;
    Canvas small = canvas;
    small.nWidth = (canvas.nWidth + EDGE_REDUCE - 1) / EDGE_REDUCE;
    small.nHeight = (canvas.nHeight + EDGE_REDUCE - 1) / EDGE_REDUCE;
    const size_t cbLevels = LevelStride(*pMap) * (size_t)canvas.nHeight;
    pMap->pbLevels = (uint8_t *)calloc(cbLevels + (size_t)canvas.nWidth * (size_t)canvas.nHeight, 1);
    pMap->pwLine = (uint16_t *)calloc((size_t)small.nWidth * EDGE_REDUCE, 4 * sizeof(uint16_t));
    if (!pMap->pbLevels || !pMap->pwLine || !FitScratch(&pMap->reduced, small) ||
        !FitBlurRoom(&pMap->room, small, true)) {
        FreeEdgeMap(pMap);
        return false;
    }
    pMap->pbCover = pMap->pbLevels + cbLevels;
    return true;
}

// ---- Levels

STOCK_WIDE static void TakeBrightness(const uint32_t *pdwRow, int32_t nWidth, uint8_t *__restrict pbLevels)
{
    for (int32_t x = 0; x < nWidth; x++)
        pbLevels[x] = (uint8_t)BrightnessOf(pdwRow[x]);
}

static void TakeLevelRow(const Canvas &canvas, const uint8_t *pbOfValue, int32_t y, uint8_t *pbLevels)
{
    const uint32_t *pdwRow = CanvasRow(canvas, y);
    if (canvas.bIndexed)
        for (int32_t x = 0; x < canvas.nWidth; x++)
            pbLevels[x] = pbOfValue[pdwRow[x] & (PALETTE_COLORS_MAX - 1)];
    else {
        TakeBrightness(pdwRow, canvas.nWidth, pbLevels);
        for (int32_t x = 0; x < canvas.nWidth; x++)
            pbLevels[x] = pbOfValue[pbLevels[x]];
    }
    memset(pbLevels - EDGE_REACH_MOST, pbLevels[0], EDGE_REACH_MOST);
    memset(pbLevels + canvas.nWidth, pbLevels[canvas.nWidth - 1], EDGE_REACH_MOST);
}

static void TakeLevels(const EdgeMap &map, const Canvas &canvas, const EdgeLook &look)
{
    uint8_t abOfValue[PALETTE_COLORS_MAX];
    const int32_t nTop = canvas.bIndexed ? std::max(canvas.nColors - 1, 1) : 255;
    for (int32_t i = 0; i < PALETTE_COLORS_MAX; i++)
        abOfValue[i] = look.abLevel[std::min(i, nTop) * 255 / nTop];
    for (int32_t y = 0; y < map.nHeight; y++)
        TakeLevelRow(canvas, abOfValue, y, LevelRow(map, y));
}

// ---- Differences

struct EdgeGain {
    uint16_t wThreshold, wGain; // in 1/16
};

STOCK_WIDE static void MarkRow(const uint8_t *pbHere, const uint8_t *pbBelow, const uint8_t *pbAbove, int32_t nReach,
                               int32_t nWidth, const EdgeGain gain, uint8_t *__restrict pbCover)
{
    const uint8_t *pbLeft = pbHere - nReach, *pbRight = pbHere + nReach;
    for (int32_t x = 0; x < nWidth; x++) {
        const uint8_t bAcross = (uint8_t)(std::max(pbLeft[x], pbRight[x]) - std::min(pbLeft[x], pbRight[x]));
        const uint8_t bUp = (uint8_t)(std::max(pbBelow[x], pbAbove[x]) - std::min(pbBelow[x], pbAbove[x]));
        const uint16_t wMost = std::max(bAcross, bUp);
        const uint16_t wOver = (uint16_t)(wMost > gain.wThreshold ? wMost - gain.wThreshold : 0);
        const uint16_t wCover = (uint16_t)((uint16_t)(wOver * gain.wGain) >> 4);
        pbCover[x] = (uint8_t)(wCover < 255 ? wCover : 255);
    }
}

void MarkEdges(EdgeMap *pMap, const Canvas &canvas, const EdgeLook &look)
{
    TakeLevels(*pMap, canvas, look);
    const int32_t nReach = std::clamp(look.nReach, 1, EDGE_REACH_MOST), nTop = pMap->nHeight - 1;
    const EdgeGain gain = {(uint16_t)look.fThreshold, (uint16_t)std::clamp(look.fGain * 16, 1.0f, 256.0f)};
    for (int32_t y = 0; y <= nTop; y++)
        MarkRow(LevelRow(*pMap, y), LevelRow(*pMap, std::max(y - nReach, 0)),
                LevelRow(*pMap, std::min(y + nReach, nTop)), nReach, pMap->nWidth, gain, CoverRow(*pMap, y));
}

// ---- Glow

STOCK_WIDE static void SumCover(const uint8_t *const *apbRow, int32_t nWidth, uint16_t *__restrict pwLine)
{
    const uint8_t *pb0 = apbRow[0], *pb1 = apbRow[1], *pb2 = apbRow[2], *pb3 = apbRow[3];
    for (int32_t x = 0; x < nWidth; x++)
        pwLine[x] = (uint16_t)(pb0[x] + pb1[x] + pb2[x] + pb3[x]);
}

static void ReduceCover(const EdgeMap &map)
{
    for (int32_t y = 0; y < map.reduced.nHeight; y++) {
        const uint8_t *apbRow[EDGE_REDUCE];
        for (int32_t i = 0; i < EDGE_REDUCE; i++)
            apbRow[i] = CoverRow(map, std::min(y * EDGE_REDUCE + i, map.nHeight - 1));
        SumCover(apbRow, map.nWidth, map.pwLine);
        std::fill(map.pwLine + map.nWidth, map.pwLine + map.reduced.nWidth * EDGE_REDUCE, map.pwLine[map.nWidth - 1]);
        uint32_t *pdwTo = ScratchRow(map.reduced, y);
        for (int32_t x = 0; x < map.reduced.nWidth; x++) {
            const uint16_t *pw = map.pwLine + x * EDGE_REDUCE;
            pdwTo[x] = (uint32_t)(pw[0] + pw[1] + pw[2] + pw[3]) / (EDGE_REDUCE * EDGE_REDUCE);
        }
    }
}

// Values between two rows of the reduced picture, four for each, in 1/64.
static void SpreadLine(const EdgeMap &map, int32_t y)
{
    static const uint32_t adwUpper[EDGE_REDUCE] = {5, 7, 1, 3};
    const int32_t yUpper = (y + EDGE_REDUCE / 2) / EDGE_REDUCE, nTop = map.reduced.nWidth - 1;
    const uint32_t *pdwLower = ScratchRow(map.reduced, std::max(yUpper - 1, 0));
    const uint32_t *pdwUpper = ScratchRow(map.reduced, std::min(yUpper, map.reduced.nHeight - 1));
    const uint32_t dwUpper = adwUpper[y % EDGE_REDUCE];
    const auto Mixed = [&](int32_t x) { return pdwLower[x] * (8 - dwUpper) + pdwUpper[x] * dwUpper; };
    uint32_t dwLeft = Mixed(0), dwHere = dwLeft;
    for (int32_t x = 0; x <= nTop; x++) {
        const uint32_t dwRight = Mixed(std::min(x + 1, nTop));
        uint16_t *pw = map.pwLine + x * EDGE_REDUCE;
        pw[0] = (uint16_t)(dwLeft * 3 + dwHere * 5);
        pw[1] = (uint16_t)(dwLeft + dwHere * 7);
        pw[2] = (uint16_t)(dwHere * 7 + dwRight);
        pw[3] = (uint16_t)(dwHere * 5 + dwRight * 3);
        dwLeft = dwHere;
        dwHere = dwRight;
    }
}

// What is covered by neither outline nor glow.
STOCK_WIDE static void CoverWithGlow(const uint16_t *pwGlow, int32_t nWidth, uint32_t dwStrength,
                                     uint8_t *__restrict pbCover)
{
    for (int32_t x = 0; x < nWidth; x++) {
        const uint32_t dwWanted = pwGlow[x] * dwStrength >> 14, dwGlow = dwWanted < 255 ? dwWanted : 255;
        pbCover[x] = (uint8_t)(pbCover[x] + ((255 - pbCover[x]) * dwGlow >> 8));
    }
}

void AddEdgeGlow(EdgeMap *pMap, float fRadius, float fStrength, uint32_t nFrame)
{
    ReduceCover(*pMap);
    const ScratchPicture &reduced = pMap->reduced;
    const Canvas canvas = {
        PixelBytes(reduced.pPixels), reduced.nWidth, reduced.nHeight, (size_t)reduced.nWidth * 4, true, 256, nullptr};
    const float fSmall = fRadius / EDGE_REDUCE;
    BlurCanvas(canvas, {fSmall, fSmall, true}, &pMap->room, nFrame, [&](int32_t y, const uint32_t *pdwRow) {
        memcpy(ScratchRow(reduced, y), pdwRow, (size_t)reduced.nWidth * 4);
    });
    for (int32_t y = 0; y < pMap->nHeight; y++) {
        SpreadLine(*pMap, y);
        CoverWithGlow(pMap->pwLine, pMap->nWidth, (uint32_t)(std::clamp(fStrength, 0.0f, 4.0f) * 256),
                      CoverRow(*pMap, y));
    }
}
