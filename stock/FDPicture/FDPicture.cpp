// FDPicture.cpp -- FDPicture.dll, a full image: pictures from files that drift, breathe and fade into each other
//
// Files are decoded on a thread of the instance and shown when they are ready, so that no frame waits for one. In a
// deterministic run the frames wait for each other anyway: there they are decoded on the spot, and a film repeats to
// the byte.
#include "PictureList.h"
#include "PictureLoader.h"
#include "PictureView.h"

#include "../common/StockModule.h"

#define DARK_SPREAD 0.995f // brightness stops short of the palette's end, which is black again

enum {
    CONTROL_FILES,
    CONTROL_FIT,
    CONTROL_FADE,
    CONTROL_ZOOM,
    CONTROL_PULSE,
    CONTROL_PAN,
    CONTROL_SPEED,
    CONTROL_OWN,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROLS
};

struct Show {
    ControlRecord *apControl[CONTROLS] = {};
    ItemSelectRow aFitRow[FIT_MODES] = {};
    DrawClock clock = {};
    std::string path;         // of the picture asked for last
    bool bComplained = false; // a complaint stands in the overlay
    PictureLevels shown = {}, old = {};
    float fFaded = 1;                                                         // share of the shown one over the old one
    float afPath[2] = {};                                                     // turns
    float fZoom = 1, fPulse = 0, fPan = 0, fPlace = 0, fSpread = 0, fOwn = 0; // eased
    PictureView view = {}, oldView = {};
    uint32_t *pdwRows = nullptr; // two rows of the canvas
    int32_t nRowPixels = 0;
    FieldColors colors = {};
    PictureLoader loader = {};

    ~Show();
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_FULL | MODULECAP_INDEXED | MODULECAP_RGB, u"Picture",
                   u"Pictures from files that drift, breathe with the sound and fade into each other");
}

static void AddFileControls(Show *pShow, const ControlMaker &maker)
{
    static const char16_t *const aszFit[FIT_MODES] = {u"Fill", u"Whole", u"Stretch", u"Tile"};
    ControlRecord **ap = pShow->apControl;
    ap[CONTROL_FILES] = AddControl(maker, CONTROLTYPE_FILESELECT, u"Picture\0Files\0",
                                   u"PNG, JPEG, GIF and BMP files; each reset of the module shows the next. An empty "
                                   u"list shows the pictures of the Images folder.",
                                   FromFixed(), FLUIDSOURCE_FIXED | FLUIDSOURCE_PERIODIC);
    if (ap[CONTROL_FILES]) {
        ap[CONTROL_FILES]->FileSelect.pszFileType = u"Picture";
        ap[CONTROL_FILES]->FileSelect.pszEditor = u"";
    }
    ap[CONTROL_FIT] = AddItemSelect(maker, u"Picture\0Fit\0", u"How a picture of another shape is laid out",
                                    pShow->aFitRow, aszFit, FIT_FILL, FromFixed());
    ap[CONTROL_FADE] = AddFloat(maker, u"Picture\0Fade\0", u"Seconds from one picture to the next", {0, 20}, {1, 4},
                                2.5f, FromFixed());
}

static void AddControls(Show *pShow, const ControlMaker &maker)
{
    AddFileControls(pShow, maker);
    ControlRecord **ap = pShow->apControl;
    ap[CONTROL_ZOOM] =
        AddFloat(maker, u"Motion\0Zoom\0", u"1 as fitted", {0.25f, 8}, {1.05f, 1.45f}, 1.2f, FromWave(43000));
    ap[CONTROL_PULSE] = AddFloat(maker, u"Motion\0Pulse\0", u"How far the picture swells, in percent", {0, 100}, {0, 7},
                                 0, FromSound(5));
    ap[CONTROL_PAN] = AddFloat(maker, u"Motion\0Pan\0", u"How far the picture drifts to its edges", {0, 1}, {0.5f, 1},
                               0.8f, FromRandom());
    ap[CONTROL_SPEED] =
        AddFloat(maker, u"Motion\0Speed\0", u"How fast it drifts", {0, 10}, {0.5f, 2}, 1, FromWave(51000));
    SetDependsOn(ap[CONTROL_SPEED], ap[CONTROL_PAN], DEPENDOP_GREATER, 0);
    ap[CONTROL_OWN] = AddBoolean(maker, u"Color\0Own Colors\0",
                                 u"On planes of colors: the picture's own, rather than the palette by its brightness",
                                 0.5f, true, FromFixed());
    ap[CONTROL_PLACE] = AddFloat(maker, u"Color\0Place\0", u"Where in the palette the dark of the picture lies", {0, 1},
                                 {0, 0.15f}, 0, FromFixed());
    ap[CONTROL_SPREAD] = AddFloat(maker, u"Color\0Spread\0", u"How much of the palette lies between dark and bright",
                                  {0.05f, 4}, {0.7f, 1}, 0.9f, FromSound(12));
}

static float ReadControl(const Show *pShow, int32_t iControl)
{
    return ReadFloat(pShow->apControl[iControl]);
}

// ---- Files

static void Complain(Show *pShow, const PlaneInfo *ppi, PictureFault eFault)
{
    if (eFault || pShow->bComplained)
        ShowPictureFault(ppi->pfnShowMessage, pShow->path, eFault);
    pShow->bComplained = eFault != PICTUREFAULT_NONE;
}

// What could not be loaded takes its turn as a picture of nothing.
static void TakeTurn(Show *pShow, const PlaneInfo *ppi, PictureFault eFault, PictureLevels &&levels)
{
    Complain(pShow, ppi, eFault);
    pShow->old = std::move(pShow->shown);
    pShow->shown = std::move(levels);
    pShow->fFaded = 0;
}

static void AskFor(Show *pShow, const PlaneInfo *ppi, const std::string &path)
{
    if (path == pShow->path && pShow->shown.nLevels > 0)
        return;
    pShow->path = path;
    const bool bHere = !ppi->hdc || ppi->hdc->bFixedClock || path.empty();
    if (!bHere && RequestPicture(&pShow->loader, path))
        return;
    PictureLevels levels = {};
    const PictureFault eFault = path.empty() ? PICTUREFAULT_NONE : LoadPicture(path, &levels);
    TakeTurn(pShow, ppi, eFault, std::move(levels));
}

static std::string CurrentFile(const Show *pShow)
{
    const ControlRecord *pctl = pShow->apControl[CONTROL_FILES];
    return pctl ? NarrowPath(pctl->FileSelect.szCurrentFile, CONTROL_TEXT) : std::string();
}

static bool HasList(const Show *pShow)
{
    const ControlRecord *pctl = pShow->apControl[CONTROL_FILES];
    return pctl && pctl->FileSelect.pszFileList && pctl->FileSelect.pszFileList[0];
}

static void Start(Show *pShow, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    if (!pShow->clock.clock.bStarted) {
        for (float &fPhase : pShow->afPath)
            fPhase = RandomUnit(&random);
        pShow->fZoom = ReadControl(pShow, CONTROL_ZOOM);
        pShow->fPan = ReadControl(pShow, CONTROL_PAN);
        pShow->fPlace = ReadControl(pShow, CONTROL_PLACE);
        pShow->fSpread = ReadControl(pShow, CONTROL_SPREAD);
        pShow->fOwn = ReadBoolean(pShow->apControl[CONTROL_OWN]) ? 1.0f : 0.0f;
    }
    std::string path = CurrentFile(pShow);
    if (path.empty() && !HasList(pShow))
        path = StockPicture(pShow->path, (uint32_t)NextRandom(&random));
    AskFor(pShow, ppi, path);
}

// A list with a periodic source moves on between resets. The moment in which it is edited holds no file.
static void FollowFiles(Show *pShow, const PlaneInfo *ppi)
{
    const std::string path = CurrentFile(pShow);
    if (!path.empty() && path != pShow->path)
        AskFor(pShow, ppi, path);
    PictureLevels levels = {};
    PictureFault eFault = PICTUREFAULT_NONE;
    if (TakePicture(&pShow->loader, &levels, &eFault))
        TakeTurn(pShow, ppi, eFault, std::move(levels));
}

// ---- Drawing

static void Move(Show *pShow, float fSeconds)
{
    const auto Ease = [&](float *pf, float fTarget, float fTimeConstant) {
        Approach(pf, fTarget, fSeconds, fTimeConstant);
    };
    Ease(&pShow->fZoom, ReadControl(pShow, CONTROL_ZOOM), 0.7f);
    Ease(&pShow->fPulse, ReadControl(pShow, CONTROL_PULSE) * 0.01f, 0.08f);
    Ease(&pShow->fPan, ReadControl(pShow, CONTROL_PAN), 1.5f);
    Ease(&pShow->fPlace, ReadControl(pShow, CONTROL_PLACE), 0.15f);
    Ease(&pShow->fSpread, ReadControl(pShow, CONTROL_SPREAD), 0.15f);
    Ease(&pShow->fOwn, ReadBoolean(pShow->apControl[CONTROL_OWN]) ? 1.0f : 0.0f, 0.4f);
    const float fSpeed = ReadControl(pShow, CONTROL_SPEED);
    AdvancePhase(&pShow->afPath[0], 0.017f * fSpeed, fSeconds);
    AdvancePhase(&pShow->afPath[1], 0.023f * fSpeed, fSeconds);
    pShow->fFaded += fSeconds / std::max(ReadControl(pShow, CONTROL_FADE), 0.01f);
    if (pShow->fFaded >= 1) {
        pShow->fFaded = 1;
        pShow->old = {};
    }
}

static bool FitRows(Show *pShow, const Canvas &canvas)
{
    if (pShow->nRowPixels == canvas.nWidth)
        return true;
    free(pShow->pdwRows);
    pShow->pdwRows = (uint32_t *)calloc((size_t)canvas.nWidth * 2, sizeof(uint32_t));
    pShow->nRowPixels = pShow->pdwRows ? canvas.nWidth : 0;
    return pShow->pdwRows;
}

STOCK_WIDE static void MixColorRows(const uint32_t *pFrom, uint32_t *__restrict pTo, int32_t n, uint32_t nShare)
{
    for (int32_t i = 0; i < n; i++)
        pTo[i] = MixPixels(pFrom[i], pTo[i], nShare);
}

static inline uint32_t BrightnessOf(uint32_t dwColor)
{
    return ((dwColor >> 16 & 255) * 77 + (dwColor >> 8 & 255) * 150 + (dwColor & 255) * 29) >> 4 & (FIELD_STEPS - 1);
}

// nOwn: 0 the palette by brightness, 256 the colours as they are.
static void StoreColors(uint32_t *pPixel, const uint32_t *pdwColor, int32_t n, const FieldColors &colors, uint32_t nOwn)
{
    if (nOwn == 256)
        for (int32_t i = 0; i < n; i++)
            pPixel[i] = (pPixel[i] & 0xFF000000u) | pdwColor[i];
    else if (nOwn == 0)
        for (int32_t i = 0; i < n; i++)
            pPixel[i] = (pPixel[i] & colors.dwKept) | colors.adwPixel[BrightnessOf(pdwColor[i])];
    else
        for (int32_t i = 0; i < n; i++)
            pPixel[i] =
                (pPixel[i] & 0xFF000000u) | MixPixels(colors.adwPixel[BrightnessOf(pdwColor[i])], pdwColor[i], nOwn);
}

static void ShowPictures(Show *pShow, const Canvas &canvas, const PicturePose &pose)
{
    const bool bShown = PreparePictureView(&pShow->view, pShow->shown, pose, canvas);
    const bool bOld = pShow->fFaded < 1 && PreparePictureView(&pShow->oldView, pShow->old, pose, canvas);
    const float f = pShow->fFaded;
    const uint32_t nShare = (uint32_t)(f * f * (3 - 2 * f) * 256 + 0.5f);
    const uint32_t nOwn = canvas.bIndexed ? 0 : (uint32_t)(std::clamp(pShow->fOwn, 0.0f, 1.0f) * 256 + 0.5f);
    uint32_t *pdwRow = pShow->pdwRows, *pdwOld = pdwRow + canvas.nWidth;
    for (int32_t y = 0; y < canvas.nHeight; y++) {
        if (bShown)
            SampleRow(pShow->view, canvas, y, pdwRow);
        else
            std::fill_n(pdwRow, canvas.nWidth, 0u);
        if (bOld)
            SampleRow(pShow->oldView, canvas, y, pdwOld);
        else if (nShare < 256)
            std::fill_n(pdwOld, canvas.nWidth, 0u);
        if (nShare < 256)
            MixColorRows(pdwOld, pdwRow, canvas.nWidth, nShare);
        StoreColors(CanvasRow(canvas, y), pdwRow, canvas.nWidth, pShow->colors, nOwn);
    }
}

static uint32_t Draw(Show *pShow, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pShow->clock, ppi);
    FollowFiles(pShow, ppi);
    Move(pShow, fSeconds);
    if ((!pShow->shown.nLevels && pShow->fFaded >= 1) || !FitRows(pShow, canvas))
        return 0;
    const float xWay = SineTurn(pShow->afPath[0]), yWay = SineTurn(pShow->afPath[1]);
    const PicturePose pose = {ReadItem(pShow->apControl[CONTROL_FIT]),
                              std::max(pShow->fZoom * (1 + pShow->fPulse), 0.1f), pShow->fPan * xWay,
                              pShow->fPan * yWay};
    MakeFieldColors(&pShow->colors, canvas, pShow->fPlace, pShow->fSpread * DARK_SPREAD);
    ShowPictures(pShow, canvas, pose);
    return 0;
}

// Pictures do not depend on the canvas: they stay over a resize.
Show::~Show()
{
    StopLoader(&loader);
    FreePictureView(&view);
    FreePictureView(&oldView);
    free(pdwRows);
}

STOCK_DRAWING_MODULE(Show)
