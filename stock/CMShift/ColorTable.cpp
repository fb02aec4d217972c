// ColorTable.cpp -- the colour table of a frame: transition, cycle, softening, light
#include "Shift.h"

#include <utility>

namespace {

const float fOrderSpread = 1.6f; // how far the first colours of an ordered transition are ahead of the last ones
const float fInertiaMs = 900;    // of the cycle: speed and direction never change at a stroke

void RefreshPalette(KeptPalette *pPalette, const CodeTables *pTables, int32_t nColors, const uint8_t *pRed,
                    const uint8_t *pGreen, const uint8_t *pBlue)
{
    const uint64_t qwChecksum = ChecksumOfPalette(pRed, pGreen, pBlue);
    if (pPalette->nColors == nColors && pPalette->qwChecksum == qwChecksum)
        return;
    pPalette->nColors = nColors;
    pPalette->qwChecksum = qwChecksum;
    for (int32_t i = 0; i < nColors; i++)
        pPalette->aColor[i] = PaletteColorOf(LabOfCodes(pTables, pRed[i], pGreen[i], pBlue[i]));
}

// ---- Transition

float EaseProgress(float f, uint32_t dwEase)
{
    switch (dwEase) {
    case EASE_EVEN:
        return f;
    case EASE_SLOW_START:
        return f * f;
    case EASE_SLOW_END:
        return f * (2 - f);
    default:
        return SmoothStep(f);
    }
}

// A smooth pattern over the loop, 0 to 1, of twelve random heights.
float ScatterAt(uint64_t qwSeed, float fPlace)
{
    const float x = fPlace * 12;
    const uint32_t i = (uint32_t)x;
    float af[2];
    for (uint32_t k = 0; k < 2; k++) {
        StockRandom random = {qwSeed + (i + k) % 12};
        af[k] = RandomUnit(&random);
    }
    return Mix(af[0], af[1], SmoothStep(x - (float)i));
}

// When a colour starts, 0 first to 1 last.
float OrderOfColor(const Shift *pShift, uint32_t dwOrder, const Lab &from, const Lab &to, float fPlace)
{
    switch (dwOrder) {
    case ORDER_DARK:
        return Limit((from.L + to.L) * 0.5f, 0, 1);
    case ORDER_BRIGHT:
        return Limit(1 - (from.L + to.L) * 0.5f, 0, 1);
    case ORDER_SWEEP:
        return fPlace;
    case ORDER_SCATTER:
        return ScatterAt(pShift->qwScatterSeed, fPlace);
    default:
        return 0;
    }
}

void MixPalettes(Shift *pShift, int32_t nColors)
{
    const uint32_t dwEase = ReadItem(pShift->ctl.pEase), dwOrder = ReadItem(pShift->ctl.pOrder);
    const float fSpread = dwOrder == ORDER_TOGETHER ? 0 : fOrderSpread;
    const float fProgress = (float)pShift->pace.fProgress * (1 + fSpread);
    const int32_t nFrom = pShift->first.nColors > 0 ? pShift->first.nColors : 1;
    const float fParting = FindParting(pShift->first.aColor, nFrom, pShift->second.aColor, nColors);
    for (int32_t i = 0; i < nColors; i++) {
        const PaletteColor &from = pShift->first.aColor[(int64_t)i * nFrom / nColors];
        const PaletteColor &to = pShift->second.aColor[i];
        const float fStart = OrderOfColor(pShift, dwOrder, from.lab, to.lab, (float)i / (float)nColors);
        const float fOwn = Limit(fProgress - fSpread * fStart, 0, 1);
        pShift->aColor[i] = MixAround(from, to, EaseProgress(fOwn, dwEase), fParting);
    }
}

// ---- Cycle

void AdvanceCycle(Shift *pShift, uint32_t nElapsedMs, uint32_t dwTimeScale)
{
    const float fElapsedMs = (float)nElapsedMs / (float)dwTimeScale;
    const float fSpeed = ReadFloat(pShift->ctl.pCycleSpeed) / 60000;
    const float fTarget = ReadBoolean(pShift->ctl.pCycleBack) ? -fSpeed : fSpeed;
    pShift->fVelocity += (fTarget - pShift->fVelocity) * fElapsedMs / (fElapsedMs + fInertiaMs);
    pShift->fOffset = WrapTurns(pShift->fOffset + pShift->fVelocity * fElapsedMs);
}

void ShiftColors(Shift *pShift, int32_t nColors)
{
    const float fShift = pShift->fOffset * (float)nColors;
    const int32_t nWhole = (int32_t)fShift;
    const float fShare = fShift - (float)nWhole;
    for (int32_t i = 0; i < nColors; i++) {
        const Lab &c1 = pShift->aColor[(i + nWhole) % nColors], &c2 = pShift->aColor[(i + nWhole + 1) % nColors];
        pShift->aScratch[i] = {Mix(c1.L, c2.L, fShare), Mix(c1.a, c2.a, fShare), Mix(c1.b, c2.b, fShare)};
    }
    memcpy(pShift->aColor, pShift->aScratch, (size_t)nColors * sizeof(Lab));
}

// ---- Softening

// Mean over 2 x nReach + 1 neighbours around the loop, by a running sum. The chroma has a mean of its own, so that
// neighbours of opposite hues do not turn grey.
void AverageNeighbours(const Lab *pFrom, Lab *pTo, int32_t nColors, int32_t nReach)
{
    double L = 0, a = 0, b = 0, fChroma = 0;
    const auto Add = [&](int32_t i, double fSign) {
        const Lab &c = pFrom[(i + nColors) % nColors];
        L += fSign * (double)c.L;
        a += fSign * (double)c.a;
        b += fSign * (double)c.b;
        fChroma += fSign * (double)ChromaOf(c);
    };
    for (int32_t i = -nReach; i <= nReach; i++)
        Add(i, 1);
    const double fShare = 1.0 / (2 * nReach + 1);
    for (int32_t i = 0; i < nColors; i++) {
        pTo[i] = {(float)(L * fShare), (float)(a * fShare), (float)(b * fShare)};
        const float fLeft = ChromaOf(pTo[i]) / std::fmax((float)(fChroma * fShare), 1e-6f);
        const float fGain = 2 - Limit(fLeft, 0, 1);
        pTo[i].a *= fGain;
        pTo[i].b *= fGain;
        Add(i - nReach, -1);
        Add(i + nReach + 1, 1);
    }
}

void SoftenColors(Shift *pShift, int32_t nColors)
{
    const float fReach = ReadFloat(pShift->ctl.pSoften) * (float)nColors / 24;
    const int32_t nReach = (int32_t)(fReach + 0.5f);
    if (nReach < 1 || 2 * nReach + 1 >= nColors)
        return;
    AverageNeighbours(pShift->aColor, pShift->aScratch, nColors, nReach);
    AverageNeighbours(pShift->aScratch, pShift->aColor, nColors, nReach);
}

// ---- Light

void WriteTable(Shift *pShift, uint32_t *pTable, int32_t nColors)
{
    const float fBrightness = ReadFloat(pShift->ctl.pBrightness), fContrast = ReadFloat(pShift->ctl.pContrast);
    const float fSaturation = ReadFloat(pShift->ctl.pSaturation);
    for (int32_t i = 0; i < nColors; i++) {
        const Lab &c = pShift->aColor[i];
        const float fFloor = FloorOfIndex(i, nColors), L = LightenL(c.L, fBrightness, fContrast) * fFloor;
        const float fGain = (c.L > 0.001f ? std::fmin(L / c.L, 1.4f) : 0) * fSaturation;
        pTable[i] = PixelOfLab(&pShift->codes, {L, c.a * fGain, c.b * fGain});
    }
}

} // namespace

void FillColorTable(Shift *pShift, PlaneInfo *ppi, int32_t nColors, uint32_t nElapsedMs)
{
    const PaletteInfo *pInfo = ppi->pPaletteInfo;
    const CodeTables *pTables = &pShift->codes;
    RefreshPalette(&pShift->first, pTables, pShift->pace.bMoving ? ReadSizes(pInfo).nColors1 : nColors, pInfo->abRed1,
                   pInfo->abGreen1, pInfo->abBlue1);
    if (pShift->pace.bMoving) {
        RefreshPalette(&pShift->second, pTables, nColors, pInfo->abRed2, pInfo->abGreen2, pInfo->abBlue2);
        MixPalettes(pShift, nColors);
    } else {
        for (int32_t i = 0; i < nColors; i++)
            pShift->aColor[i] = pShift->first.aColor[i].lab;
    }
    AdvanceCycle(pShift, nElapsedMs, ReadTimeScale(ppi));
    ShiftColors(pShift, nColors);
    SoftenColors(pShift, nColors);
    WriteTable(pShift, ppi->lpColorTable, nColors);
    ppi->nColors = nColors;
}
