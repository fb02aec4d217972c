// DEZoom.cpp -- DEZoom.dll, a drawing effect: the last picture grows, turns and slides under the next one, again and
// again
#include "../common/StockModule.h"
#include "../common/StockPaths.h"
#include "../common/StockScratch.h"

enum {
    CONTROL_ZOOM,
    CONTROL_BEAT,
    CONTROL_TURN,
    CONTROL_SLIDE,
    CONTROL_WANDER,
    CONTROL_FADE,
    CONTROL_CLARITY,
    CONTROL_EDGES,
    CONTROL_KIND,
    CONTROLS
};

struct ZoomMotion {
    float fZoom, fTurn, fSlide, fWander; // eased; doublings, turns and picture heights a second, heights
};

struct Zoom {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aEdgeRow[EDGES_MODES], aKindRow[PICTURE_KINDS];
    DrawClock clock;
    ZoomMotion motion;
    float fHeading, xPhase, yPhase; // turns
    uint32_t nFrame;
    RemapSource source;
    ScratchPicture trails; // of fresh pictures
    bool bRemembers;       // the source holds them
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Zoom and Turn",
                   u"The last picture grows, turns and slides under the next one, without end");
}

static void AddControls(Zoom *pZoom, const ControlMaker &maker)
{
    ControlRecord **ap = pZoom->apControl;
    ap[CONTROL_ZOOM] = AddFloat(maker, u"Motion\0Zoom\0", u"Doublings of the size in a second; below 0 it shrinks",
                                {-2, 2}, {-0.15f, 0.5f}, 0.3f, FromWave(43000));
    ap[CONTROL_BEAT] = AddFloat(maker, u"Motion\0Beat\0", u"Doublings in a second that come on top, meant for sound",
                                {-2, 2}, {0, 0.8f}, 0, FromSound(5));
    ap[CONTROL_TURN] = AddFloat(maker, u"Motion\0Turn\0", u"Turns in a minute; below 0 clockwise", {-30, 30}, {-4, 4},
                                2, FromWave(31000));
    ap[CONTROL_SLIDE] = AddFloat(maker, u"Motion\0Slide\0", u"How fast the picture slides, in heights a second", {0, 1},
                                 {0, 0.08f}, 0.03f, FromPeriodic(8000));
    ap[CONTROL_WANDER] = AddFloat(maker, u"Motion\0Wander\0", u"How far the middle strays from that of the picture",
                                  {0, 1}, {0, 0.5f}, 0.25f, FromRandom());
    ap[CONTROL_FADE] = AddFloat(maker, u"Trails\0Fade\0", u"How fast trails fade; 0 keeps them for ever", {0, 1},
                                {0.12f, 0.26f}, 0.2f, FromWave(37000));
    ap[CONTROL_CLARITY] = AddFloat(maker, u"Trails\0Clarity\0", u"0 lets trails blur, 1 draws their edges sharp",
                                   {0, 1}, {0.4f, 0.9f}, 0.7f, FromFixed());
    ap[CONTROL_EDGES] = AddItemSelect(maker, u"Trails\0Edges\0", u"What comes in over the edges of the picture",
                                      pZoom->aEdgeRow, aszRemapEdges, EDGES_MIRRORED, FromFixed());
    ap[CONTROL_KIND] = AddPictureKind(maker, pZoom->aKindRow);
}

static ZoomMotion ReadMotion(const Zoom *pZoom)
{
    ControlRecord *const *ap = pZoom->apControl;
    return {ReadFloat(ap[CONTROL_ZOOM]) + ReadFloat(ap[CONTROL_BEAT]), ReadFloat(ap[CONTROL_TURN]) / 60,
            ReadFloat(ap[CONTROL_SLIDE]), ReadFloat(ap[CONTROL_WANDER])};
}

static void Start(Zoom *pZoom, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pZoom->clock = {};
    pZoom->motion = ReadMotion(pZoom);
    pZoom->fHeading = RandomUnit(&random);
    pZoom->xPhase = RandomUnit(&random);
    pZoom->yPhase = RandomUnit(&random);
    pZoom->bRemembers = false;
}

static void Advance(Zoom *pZoom, float fSeconds)
{
    const ZoomMotion target = ReadMotion(pZoom);
    Approach(&pZoom->motion.fZoom, target.fZoom, fSeconds, 0.08f);
    Approach(&pZoom->motion.fTurn, target.fTurn, fSeconds, 0.5f);
    Approach(&pZoom->motion.fSlide, target.fSlide, fSeconds, 0.5f);
    Approach(&pZoom->motion.fWander, target.fWander, fSeconds, 2);
    AdvancePhase(&pZoom->fHeading, 0.03f, fSeconds);
    AdvancePhase(&pZoom->xPhase, 0.0233f, fSeconds);
    AdvancePhase(&pZoom->yPhase, 0.0311f, fSeconds);
}

// Where the pixels of the next picture stood in the last one.
static RemapPlan PlanStep(const Zoom *pZoom, const Canvas &canvas, float fSeconds)
{
    const ZoomMotion &motion = pZoom->motion;
    const float fWidth = (float)canvas.nWidth, fHeight = (float)canvas.nHeight;
    const float x = 0.5f * (fWidth - 1) + 0.5f * fWidth * motion.fWander * SineTurn(pZoom->xPhase);
    const float y = 0.5f * (fHeight - 1) + 0.5f * fHeight * motion.fWander * SineTurn(pZoom->yPhase);
    RemapPlan plan = TurnPlan(x, y, motion.fTurn * fSeconds, std::exp2(motion.fZoom * fSeconds));
    const float fSlide = motion.fSlide * fSeconds * fHeight;
    plan.x0 -= fSlide * CosineTurn(pZoom->fHeading);
    plan.y0 -= fSlide * SineTurn(pZoom->fHeading);
    return plan;
}

// pdwTrail becomes the mean of the trails with so much of the picture; the picture the lighter of both.
static void MixFresh(uint32_t *pdwPixel, uint32_t *pdwTrail, int32_t nPixels, uint32_t nShare, bool bIndexed)
{
    if (bIndexed) {
        for (int32_t i = 0; i < nPixels; i++)
            pdwPixel[i] = std::max(pdwPixel[i], pdwTrail[i]);
        memcpy(pdwTrail, pdwPixel, (size_t)nPixels * sizeof(uint32_t));
        return;
    }
    uint8_t *pbPixel = (uint8_t *)pdwPixel, *pbTrail = (uint8_t *)pdwTrail;
    for (int32_t i = 0; i < nPixels * 4; i++) {
        const uint32_t nTrail = pbTrail[i] * (256 - nShare) + pbPixel[i] * nShare;
        pbTrail[i] = (uint8_t)((nTrail + 128) >> 8);
        pbPixel[i] = std::max(pbPixel[i], pbTrail[i]);
    }
}

static bool Remembers(const Zoom *pZoom, const Canvas &canvas)
{
    const RemapSource &source = pZoom->source;
    return pZoom->bRemembers && source.nWidth == canvas.nWidth && source.nHeight == canvas.nHeight &&
           source.bIndexed == canvas.bIndexed && source.nColors == canvas.nColors;
}

// A fresh picture comes on top of what is left of those before it, which has moved on.
static void DrawFresh(Zoom *pZoom, const Canvas &canvas, const RemapPlan &plan, const RemapLook &look, float fClarity,
                      float fShare)
{
    Canvas trails = canvas;
    if (Remembers(pZoom, canvas) && FitScratch(&pZoom->trails, canvas)) {
        trails.pbBits = (uint8_t *)pZoom->trails.pPixels;
        trails.cbRow = (size_t)canvas.nWidth * sizeof(uint32_t);
        RemapCanvas(trails, pZoom->source, look, [&](int32_t x, int32_t y, int32_t nPixels, RemapPath *pPath) {
            LayLine(plan, x, y, 0, nPixels, pPath);
            return true;
        });
        for (int32_t y = 0; y < canvas.nHeight; y++)
            MixFresh(CanvasRow(canvas, y), CanvasRow(trails, y), canvas.nWidth, (uint32_t)(fShare * 256),
                     canvas.bIndexed);
    }
    pZoom->bRemembers = TakeSource(&pZoom->source, trails, look.dwEdges, fClarity);
}

static void DrawOn(Zoom *pZoom, const Canvas &canvas, const RemapPlan &plan, const RemapLook &look, float fClarity)
{
    pZoom->bRemembers = false;
    if (!TakeSource(&pZoom->source, canvas, look.dwEdges, fClarity))
        return;
    RemapCanvas(canvas, pZoom->source, look, [&](int32_t x, int32_t y, int32_t nPixels, RemapPath *pPath) {
        LayLine(plan, x, y, 0, nPixels, pPath);
        return true;
    });
}

static uint32_t Draw(Zoom *pZoom, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pZoom->clock, ppi);
    Advance(pZoom, fSeconds);
    const bool bFresh = IsPictureFresh(pZoom->apControl[CONTROL_KIND], ppi);
    const float fFade = ReadFloat(pZoom->apControl[CONTROL_FADE]);
    const float fClarity = fSeconds > 0 ? ReadFloat(pZoom->apControl[CONTROL_CLARITY]) : 0;
    const RemapLook look =
        TrailLook(ReadItem(pZoom->apControl[CONTROL_EDGES]), pZoom->nFrame++, FadeFor(fFade, fSeconds));
    const RemapPlan plan = PlanStep(pZoom, canvas, fSeconds);
    if (bFresh)
        DrawFresh(pZoom, canvas, plan, look, fClarity, 1 - std::exp(-fSeconds / (0.5f - 0.4f * fFade)));
    else if (fSeconds > 0)
        DrawOn(pZoom, canvas, plan, look, fClarity);
    return 0;
}

static void Release(Zoom *pZoom)
{
    FreeSource(&pZoom->source);
    FreeScratch(&pZoom->trails);
    pZoom->bRemembers = false;
}

STOCK_DRAWING_MODULE(Zoom)
