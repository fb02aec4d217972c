// PMSunflower.cpp -- a painter: the seeds of a sunflower, through which the sound runs from the middle to the rim
#include "module.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>

enum { SEEDS, SIZE, UNFOLD, SPIN, CONTROLS };
static const struct {
    char16_t szName[32], szHelp[32]; // group, name; the zeros behind them end the list
    ControlFloat range;              // lowest, highest; from, to by default and now; value now and by default
    uint32_t dwSource, nWaveMs;      // how it moves by default
} aControl[CONTROLS] = {
    {u"Shape\0Seeds", u"How many", {1, 900, 90, 420, 90, 420, 240, 240, 0}, FLUIDSOURCE_WAVE, 61000},
    {u"Shape\0Size", u"1: neighbors touch", {0.1f, 3, 0.6f, 1.4f, 0.6f, 1.4f, 1, 1, 0}, FLUIDSOURCE_SOUND, 8000},
    {u"Shape\0Unfold", u"Bends the spirals", {-9, 9, -2, 2, -2, 2, 0, 0, 0}, FLUIDSOURCE_WAVE, 47000},
    {u"Motion\0Spin", u"Turns in a minute", {-30, 30, -3, 3, -3, 3, 1.5f, 1.5f, 0}, FLUIDSOURCE_WAVE, 71000}};

struct Sunflower {
    ControlRecord *apControl[CONTROLS]; // the host's: it moves their values, the module reads them
    float fTurn, fDue, afHeard[64];     // angle; levels due; levels of the sound, newest first, 60 a second
    uint64_t qwTick;                    // of the last frame
};

static float Read(const Sunflower *p, int iControl) // limited: a loud sound can drive a value out of its range
{
    const ControlFloat &f = p->apControl[iControl] ? p->apControl[iControl]->Float : aControl[iControl].range;
    return std::fmin(std::fmax(f.fValue, f.fAbsMin), f.fAbsMax);
}

static void PaintSpot(PlaneInfo *ppi, float x, float y, float fLight, float fRadius, float fPlace)
{
    const uint32_t iColor = (uint32_t)(fPlace * (float)std::clamp(ppi->nColors - 1, 0, PALETTE_COLORS_MAX - 1));
    const uint32_t dwInk = ppi->bIndexed ? iColor : ppi->lpColorTable[iColor], dwMask = ppi->bIndexed ? ~0u : 255;
    for (int32_t iy = (int32_t)std::max(0.0f, y - fRadius); iy < ppi->nHeight && (float)iy < y + fRadius; iy++) {
        uint32_t *pRow = (uint32_t *)((char *)ppi->hbmDraw->pBits + (uint64_t)iy * ppi->hbmDraw->cbRow);
        for (int32_t ix = (int32_t)std::max(0.0f, x - fRadius); ix < ppi->nWidth && (float)ix < x + fRadius; ix++) {
            const float dx = ((float)ix - x) / fRadius, dy = ((float)iy - y) / fRadius;
            const float f = std::max(1 - dx * dx - dy * dy, 0.0f) * fLight;
            uint32_t dwNew = 0;
            for (uint32_t n = 0; n < (ppi->bIndexed ? 8 : 24); n += 8) // the index, or blue, green, red
                dwNew |= std::max(pRow[ix] >> n & dwMask, (uint32_t)((float)(dwInk >> n & dwMask) * f)) << n;
            pRow[ix] = dwNew;
        }
    }
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn pfnAllocControl, int32_t *pnControls)
{
    Sunflower *p = (Sunflower *)(*ppvContext = calloc(1, sizeof(Sunflower)));
    for (int i = 0; p && i < CONTROLS && (p->apControl[i] = pfnAllocControl(pnControls)); i++) {
        ControlBase &base = p->apControl[i]->Base;
        base.dwType = CONTROLTYPE_FLOAT;
        std::copy_n(aControl[i].szName, 32, base.szName);
        std::copy_n(aControl[i].szHelp, 32, base.szDescription);
        base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED;
        base.dwDefaultSource = base.dwSource = aControl[i].dwSource;
        base.nDefaultWavePeriod = base.nWavePeriod = aControl[i].nWaveMs;
        p->apControl[i]->Float = aControl[i].range;
    }
}

void ModuleInitialize(void *pvContext, PlaneInfo *ppi) // bring-up or reset: chance comes from the seed
{
    if (pvContext)
        ((Sunflower *)pvContext)->fTurn = (float)(ppi->hdc->qwSeed % 6283) * 0.001f;
}

uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi) // moves on by time, never by frames
{
    Sunflower *p = (Sunflower *)pvContext;
    if (!p)
        return 0;
    const float fMs = (float)std::min<uint64_t>(ppi->hdc->qwTick - p->qwTick, 100) / (float)ppi->dwTimeScale;
    p->qwTick = ppi->hdc->qwTick;
    for (p->fDue += 0.06f * fMs; p->fDue >= 1; p->fDue--) {
        std::copy_backward(p->afHeard, p->afHeard + 63, p->afHeard + 64);
        p->afHeard[0] = std::clamp(ppi->pSound->fRawLevel, 0.0f, 1.0f);
    }
    p->fTurn = std::fmod(p->fTurn + Read(p, SPIN) * fMs * 0.000104720f, 6.2831853f);
    const float fSeeds = Read(p, SEEDS), fBend = 2.399963f + 0.006f * Read(p, UNFOLD); // about the golden angle
    const float w = (float)ppi->nWidth, h = (float)ppi->nHeight, fSize = 0.4f * Read(p, SIZE) / std::sqrt(fSeeds);
    for (float i = 0; i < fSeeds; i++) {
        const float fOut = std::sqrt(std::min((i + 0.5f) / fSeeds, 1.0f)), fHeard = p->afHeard[(int)(63 * fOut)];
        const float fAway = std::min(w, h) * fOut * (0.41f + 0.06f * fHeard), fAngle = p->fTurn + i * fBend;
        PaintSpot(ppi, w / 2 + fAway * std::cos(fAngle), h / 2 + fAway * std::sin(fAngle), (1 + fHeard) / 2,
                  std::min(w, h) * fSize * (0.5f + fHeard), 0.62f + 0.32f * std::sin(4 * fOut + p->fTurn));
    }
    return 0;
}
// clang-format off
void ModuleGetDescription(ModuleDescription *pmd)
{
    *pmd = {MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, {}, u"Sunflower",
            u"Seeds through which the sound runs from the middle to the rim", 0, 0, u"1.0"};
}
void ModulePreInitialize(void *, PlaneInfo *) {}
void ModuleResolveIndexedPlane(void *, PlaneInfo *, HostBitmap *) {}
void ModuleCleanUp(void *) {}
void ModuleDestroyControlStructure(void *pvContext) { free(pvContext); }
