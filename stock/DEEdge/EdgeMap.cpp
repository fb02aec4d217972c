// EdgeMap.cpp -- levels of the picture, differences between neighbours, and the blur of these
#include "EdgeMap.h"

void FreeEdgeMap(EdgeMap *pMap)
{
    free(pMap->pbLevels);
    FreeReduced(&pMap->reduced);
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
    const size_t cbLevels = LevelStride(*pMap) * (size_t)canvas.nHeight;
    pMap->pbLevels = (uint8_t *)calloc(cbLevels + (size_t)canvas.nWidth * (size_t)canvas.nHeight, 1);
    if (!pMap->pbLevels || !FitReduced(&pMap->reduced, canvas, false)) {
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
    for (int32_t y = 0; y < pMap->reduced.pixels.nHeight; y++)
        ReduceRow(pMap->reduced, y, pMap->nWidth, pMap->nHeight, [&](int32_t yRow) { return CoverRow(*pMap, yRow); });
    BlurReduced(&pMap->reduced, {fRadius, fRadius, true}, nFrame);
    const uint32_t dwStrength = (uint32_t)(std::clamp(fStrength, 0.0f, 4.0f) * 256);
    for (int32_t y = 0; y < pMap->nHeight; y++)
        CoverWithGlow(SpreadRow(pMap->reduced, y), pMap->nWidth, dwStrength, CoverRow(*pMap, y));
}
