// FDMandelbrot.cpp -- FDMandelbrot.dll, a full image: journeys into the Mandelbrot set, from place to place
//
// What is seen is a keyframe that is magnified from 1 to 2. Meanwhile the next keyframe, with half the view, is
// worked out at so many iterations a second. The journey never outruns it: it slows down where the set is costly.
// Iterations are counted, not timed, so that a film is the same each time.
#include "Keyframe.h"

#include "../common/StockModule.h"

#define JOURNEY_EFFORT 1.5e8      // iterations of points in a second
#define JOURNEY_FIRST_OCTAVE 2.0f // where a journey begins
#define JOURNEY_QUICK_DETAIL 0.3f // of the very first picture, which has to be there at once

enum { DETAIL_DRAFT, DETAIL_NORMAL, DETAIL_FINE, DETAILS };

// Whether the next keyframe shows another place, or is to be begun anew there.
enum : uint32_t { LEAVE_NOT, LEAVE_NEXT, LEAVE_NOW };

enum { CONTROL_SPEED, CONTROL_DEPTH, CONTROL_FADE, CONTROL_LEAVE, CONTROL_DETAIL, CONTROLS };

// Points whose orbits end in a loop that pushes away: around them the set spirals on for ever.
static constexpr Place asPlace[] = {
    {-0.7756837680090538, 0.13646736829469012, 13}, {-0.10109636384562216, 0.9562865108091415, 8},
    {0.42451271905003964, 0.20753022816674530, 12}, {-0.37397341079070690, 0.6597703964249155, 16},
    {-1.16234159988403879, 0.29236893389658606, 8}, {-0.56220262152303721, 0.64281714907277525, 14},
    {-1.77678006655987094, -0.0054605981537668, 8}, {0.29447552362463313, 0.01631644173420511, 9},
};
#define PLACES (uint32_t)(sizeof asPlace / sizeof asPlace[0])

struct Journey {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aDetailRow[DETAILS];
    DrawClock clock;
    StockRandom random;
    uint32_t iPlace;
    Keyframe shown, next, old;
    float fZoomed, fOldZoomed;              // octaves into the shown and the old keyframe
    float fFaded;                           // share of the shown one over the old one; 1: there is no old one
    float fLastEffort;                      // what the last keyframe took
    float fSpeed;                           // eased; octaves a second
    uint32_t dwLeave;                       // the next keyframe shows another place
    int32_t nWidth, nHeight;                // picture that the keyframes are for
    float fDetail;
    KeyframeView view;
    FieldPalette palette;
    uint32_t *pOldRow; // nWidth pixels
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_FULL | MODULECAP_INDEXED | MODULECAP_RGB, u"Mandelbrot Journey",
                   u"Zooms into beautiful places of the Mandelbrot set, one after the other");
}

static void AddControls(Journey *pJourney, const ControlMaker &maker)
{
    static const char16_t *const aszDetail[DETAILS] = {u"Draft", u"Normal", u"Fine"};
    ControlRecord **ap = pJourney->apControl;
    ap[CONTROL_SPEED] = AddFloat(maker, u"Journey\0Speed\0",
                                 u"Doublings of the size in a minute; it slows down where there is much to work out",
                                 {0, 60}, {5, 14}, 8, FromSound(40));
    ap[CONTROL_DEPTH] = AddInteger(maker, u"Journey\0Depth\0", u"Doublings before it moves on to the next place",
                                   {4, 34}, {10, 24}, 18, FromFixed());
    ap[CONTROL_FADE] =
        AddFloat(maker, u"Journey\0Fade\0", u"Seconds from one place to the next", {0, 20}, {2, 6}, 4, FromFixed());
    ap[CONTROL_LEAVE] =
        AddBoolean(maker, u"Journey\0Leave at Reset\0",
                   u"A reset of the module ends the journey and begins one to another place", 0.5f, false, FromFixed());
    ap[CONTROL_DETAIL] = AddItemSelect(maker, u"Journey\0Detail\0", u"How finely it is drawn; fine is slower",
                                       pJourney->aDetailRow, aszDetail, DETAIL_NORMAL, FromFixed());
    FieldPalette &palette = pJourney->palette;
    palette.pPlace = AddFieldPlace(maker, u"Where in the palette the colors begin", {0, 0.3f}, 0, FromSound(9));
    palette.pCycle = AddFieldCycle(maker, {-3, 3}, 2, FromWave(53000));
    palette.pSpread = AddFieldSpread(maker, u"How fast the colors change towards the set", {0.02f, 4}, {0.3f, 0.6f},
                                     0.4f, FromWave(71000));
}

static float ReadControl(const Journey *pJourney, int32_t iControl)
{
    return ReadFloat(pJourney->apControl[iControl]);
}

static void Start(Journey *pJourney, PlaneInfo *ppi)
{
    if (pJourney->shown.pfValue) { // a reset, which comes every few seconds where the user left it so
        if (ReadBoolean(pJourney->apControl[CONTROL_LEAVE]))
            pJourney->dwLeave = LEAVE_NOW;
        return;
    }
    pJourney->random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pJourney->clock = {};
    pJourney->iPlace = RandomBelow(&pJourney->random, PLACES);
    SettlePalette(&pJourney->palette);
    pJourney->fSpeed = 0;
}

// ---- Keyframes

static void Release(Journey *pJourney)
{
    FreeKeyframe(&pJourney->shown);
    FreeKeyframe(&pJourney->next);
    FreeKeyframe(&pJourney->old);
    FreeView(&pJourney->view);
    free(pJourney->pOldRow);
    pJourney->pOldRow = nullptr;
    pJourney->nWidth = pJourney->nHeight = 0;
}

static void BeginNext(Journey *pJourney, uint32_t dwLeave)
{
    float fOctave = pJourney->shown.fOctave + 1;
    if (dwLeave != LEAVE_NOT) {
        pJourney->iPlace = (pJourney->iPlace + 1 + RandomBelow(&pJourney->random, PLACES - 1)) % PLACES;
        fOctave = JOURNEY_FIRST_OCTAVE;
    }
    pJourney->dwLeave = dwLeave;
    BeginKeyframe(&pJourney->next, asPlace[pJourney->iPlace], fOctave);
}

static bool IsDeep(const Journey *pJourney)
{
    const float fDepth = (float)ReadInteger(pJourney->apControl[CONTROL_DEPTH]);
    return pJourney->shown.fOctave + 1 > JOURNEY_FIRST_OCTAVE + fDepth;
}

// Everything anew for a picture of this size. The first keyframe is coarse and worked out on the spot.
static bool FitJourney(Journey *pJourney, const Canvas &canvas, float fDetail)
{
    if (pJourney->nWidth == canvas.nWidth && pJourney->nHeight == canvas.nHeight && pJourney->fDetail == fDetail)
        return true;
    Release(pJourney);
    pJourney->pOldRow = (uint32_t *)calloc((size_t)canvas.nWidth, sizeof(uint32_t));
    if (!pJourney->pOldRow ||
        !FitKeyframe(&pJourney->shown, canvas.nWidth, canvas.nHeight, std::min(JOURNEY_QUICK_DETAIL, fDetail)) ||
        !FitKeyframe(&pJourney->next, canvas.nWidth, canvas.nHeight, fDetail)) {
        Release(pJourney);
        return false;
    }
    BeginKeyframe(&pJourney->shown, asPlace[pJourney->iPlace], JOURNEY_FIRST_OCTAVE);
    WorkOut(&pJourney->shown, 1e30);
    pJourney->fLastEffort = (float)pJourney->shown.fEffort * 12;
    pJourney->fZoomed = 0;
    pJourney->fFaded = 1;
    BeginNext(pJourney, LEAVE_NOT);
    pJourney->nWidth = canvas.nWidth;
    pJourney->nHeight = canvas.nHeight;
    pJourney->fDetail = fDetail;
    return true;
}

// Shows the next keyframe in place of the shown one, and begins one after it in the memory that this sets free.
static void TakeNext(Journey *pJourney, const Canvas &canvas)
{
    pJourney->fLastEffort = (float)pJourney->next.fEffort;
    if (pJourney->dwLeave) {
        std::swap(pJourney->old, pJourney->shown);
        pJourney->fOldZoomed = pJourney->fZoomed;
        pJourney->fFaded = 0;
        pJourney->fZoomed = 0;
    } else {
        pJourney->fZoomed = std::max(pJourney->fZoomed - 1, 0.0f);
    }
    std::swap(pJourney->shown, pJourney->next);
    if (FitKeyframe(&pJourney->next, canvas.nWidth, canvas.nHeight, pJourney->fDetail))
        BeginNext(pJourney, IsDeep(pJourney) ? LEAVE_NEXT : LEAVE_NOT);
}

// Octaves a second at which the shown keyframe lasts until the next one is there.
static float SpeedOfWork(const Journey *pJourney, float fLeft)
{
    const Keyframe &next = pJourney->next;
    if (IsComplete(next))
        return 1000;
    const float fDone = (float)next.iNextBatch / (float)std::max(next.nBatches, 1);
    const float fExpected = fDone > 0.1f ? (float)next.fEffort / fDone : pJourney->fLastEffort * 1.2f;
    const float fSeconds = std::max(fExpected - (float)next.fEffort, 0.0f) / (float)JOURNEY_EFFORT;
    return fLeft / (fSeconds + 0.1f);
}

static void Travel(Journey *pJourney, const Canvas &canvas, float fSeconds)
{
    if (pJourney->dwLeave == LEAVE_NOW)
        BeginNext(pJourney, LEAVE_NEXT);
    WorkOut(&pJourney->next, JOURNEY_EFFORT * (double)fSeconds);
    const float fLeft = std::max(1 - pJourney->fZoomed, 0.0f);
    const float fWanted = std::max(ReadControl(pJourney, CONTROL_SPEED), 0.0f) / 60;
    Approach(&pJourney->fSpeed, std::min(fWanted, SpeedOfWork(pJourney, fLeft)), fSeconds, 0.5f);
    pJourney->fZoomed += std::min(pJourney->fSpeed * fSeconds, IsComplete(pJourney->next) ? 10.0f : fLeft);
    const float fFade = ReadControl(pJourney, CONTROL_FADE);
    pJourney->fFaded = std::min(pJourney->fFaded + fSeconds / std::max(fFade, 0.01f), 1.0f);
    pJourney->fOldZoomed = std::min(pJourney->fOldZoomed + pJourney->fSpeed * fSeconds, 2.0f);
    // Another place need not wait for the last doubling.
    if (IsComplete(pJourney->next) && pJourney->fFaded >= 1 && (pJourney->fZoomed >= 1 || pJourney->dwLeave))
        TakeNext(pJourney, canvas);
}

// ---- Drawing

static void FadeRow(const Canvas &canvas, uint32_t *pPixel, const uint32_t *pOld, float fShare)
{
    const float f = fShare * fShare * (3 - 2 * fShare);
    const uint32_t nShare = (uint32_t)(f * 256 + 0.5f);
    for (int32_t i = 0; i < canvas.nWidth; i++)
        if (canvas.bIndexed)
            pPixel[i] = (pOld[i] * (256 - nShare) + pPixel[i] * nShare) >> 8;
        else
            pPixel[i] = (pPixel[i] & 0xFF000000u) | MixPixels(pOld[i], pPixel[i], nShare);
}

static void ShowJourney(Journey *pJourney, const Canvas &canvas, const TurnColors &colors)
{
    const float fZoom = std::exp2(pJourney->fZoomed), fOldZoom = std::exp2(pJourney->fOldZoomed);
    KeyframeView oldView = {};
    const bool bFades = pJourney->fFaded < 1 && PrepareView(&oldView, pJourney->old, canvas, fOldZoom);
    if (PrepareView(&pJourney->view, pJourney->shown, canvas, fZoom))
        for (int32_t y = 0; y < canvas.nHeight; y++) {
            uint32_t *pPixel = CanvasRow(canvas, y);
            ShowRow(pJourney->view, pJourney->shown, canvas, fZoom, y, colors, pPixel);
            if (!bFades)
                continue;
            ShowRow(oldView, pJourney->old, canvas, fOldZoom, y, colors, pJourney->pOldRow);
            FadeRow(canvas, pPixel, pJourney->pOldRow, pJourney->fFaded);
        }
    FreeView(&oldView);
}

static uint32_t Draw(Journey *pJourney, PlaneInfo *ppi, const Canvas &canvas)
{
    static constexpr float afDetail[DETAILS] = {0.6f, 1.0f, 1.5f};
    if (!FitJourney(pJourney, canvas, afDetail[ReadItem(pJourney->apControl[CONTROL_DETAIL])]))
        return 0;
    const float fSeconds = StepSeconds(&pJourney->clock, ppi);
    FieldPalette &palette = pJourney->palette;
    MovePalette(&palette, fSeconds, 0.12f, 2);
    Travel(pJourney, canvas, fSeconds);
    MakeFieldColors(&palette.colors, canvas, palette.fPlace + palette.fCycled, 1); // rows spread it themselves
    ShowJourney(pJourney, canvas, {&palette.colors, palette.fSpread, canvas.bIndexed ? 0 : PixelAt(canvas, 0)});
    return 0;
}

STOCK_DRAWING_MODULE(Journey)
