// FDJulia.cpp -- FDJulia.dll, a full image: a Julia set whose constant travels along the border of the Mandelbrot set
#include "../common/StockField.h"
#include "../common/StockModule.h"

#define JULIA_BATCH 16 // vertices that are iterated together
#define JULIA_ITERATIONS_MOST 256
#define JULIA_ESCAPE2 256.0f // squared radius beyond which the smooth count is exact enough

enum { DETAIL_DRAFT, DETAIL_NORMAL, DETAIL_FINE, DETAILS };

enum {
    CONTROL_SPEED,
    CONTROL_OFFSET,
    CONTROL_PULSE,
    CONTROL_ZOOM,
    CONTROL_SPIN,
    CONTROL_ITERATIONS,
    CONTROL_DETAIL,
    CONTROL_INSIDE,
    CONTROLS
};

struct Julia {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aDetailRow[DETAILS];
    DrawClock clock;
    float fWay, fSway; // the constant's place along the border, and of a sway across it, in turns
    float fSpun;
    float fOffset, fPulse, fZoom, fSpeed, fInside, fIterations; // eased
    FieldGrid grid;
    FieldPalette palette;
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_FULL | MODULECAP_INDEXED | MODULECAP_RGB, u"Julia",
                   u"A Julia set that keeps changing: its constant travels along the Mandelbrot set's border");
}

static void AddShapeControls(Julia *pJulia, const ControlMaker &maker)
{
    static const char16_t *const aszDetail[DETAILS] = {u"Draft", u"Normal", u"Fine"};
    ControlRecord **ap = pJulia->apControl;
    ap[CONTROL_SPEED] = AddFloat(maker, u"Journey\0Speed\0", u"How fast the constant travels along the border", {-4, 4},
                                 {0.3f, 1.2f}, 0.6f, FromSound(36));
    ap[CONTROL_OFFSET] = AddFloat(maker, u"Journey\0Offset\0",
                                  u"Above 0 it keeps outside of the border, where the set is dust; below 0 inside",
                                  {-1, 1}, {-0.15f, 0.35f}, 0.15f, FromWave(29000));
    ap[CONTROL_PULSE] = AddFloat(maker, u"Journey\0Pulse\0", u"Pushes the constant further outside", {0, 1}, {0, 0.4f},
                                 0, FromSound(12));
    ap[CONTROL_ZOOM] =
        AddFloat(maker, u"View\0Zoom\0", u"1 shows all of the set", {0.5f, 20}, {1.05f, 2.4f}, 1.4f, FromWave(47000));
    ap[CONTROL_SPIN] = AddFloat(maker, u"View\0Spin\0", u"Turns of the picture in a minute", {-30, 30}, {-1.5f, 1.5f},
                                0.8f, FromWave(61000));
    ap[CONTROL_ITERATIONS] = AddInteger(maker, u"View\0Iterations\0", u"More show finer structure and take longer",
                                        {8, JULIA_ITERATIONS_MOST}, {32, 96}, 64, FromFixed());
    ap[CONTROL_DETAIL] =
        AddItemSelect(maker, u"View\0Detail\0", u"Fine computes every pixel, and takes four times as long",
                      pJulia->aDetailRow, aszDetail, DETAIL_NORMAL, FromFixed());
}

static void AddControls(Julia *pJulia, const ControlMaker &maker)
{
    AddShapeControls(pJulia, maker);
    ControlRecord **ap = pJulia->apControl;
    FieldPalette &palette = pJulia->palette;
    palette.pPlace =
        AddFieldPlace(maker, u"Where in the palette the outermost color lies", {0.02f, 0.25f}, 0.05f, FromSound(8));
    palette.pCycle = AddFieldCycle(maker, {-2, 2}, 1, FromWave(53000));
    palette.pSpread = AddFieldSpread(maker, u"How much of the palette lies between outside and border", {0.05f, 6},
                                     {0.8f, 2}, 1.4f, FromWave(37000));
    ap[CONTROL_INSIDE] =
        AddFloat(maker, u"Color\0Inside\0", u"How far the colors go on inside the set; 0 leaves it flat", {0, 1},
                 {0.2f, 0.9f}, 0.6f, FromWave(33000));
}

static float ReadControl(const Julia *pJulia, int32_t iControl)
{
    return ReadFloat(pJulia->apControl[iControl]);
}

static void Follow(Julia *pJulia, float fSeconds)
{
    const auto Ease = [&](float *pf, int32_t iControl, float fTimeConstant) {
        Approach(pf, ReadControl(pJulia, iControl), fSeconds, fTimeConstant);
    };
    Ease(&pJulia->fSpeed, CONTROL_SPEED, 0.4f);
    Ease(&pJulia->fOffset, CONTROL_OFFSET, 0.5f);
    Ease(&pJulia->fPulse, CONTROL_PULSE, 0.15f);
    Ease(&pJulia->fZoom, CONTROL_ZOOM, 0.7f);
    Ease(&pJulia->fInside, CONTROL_INSIDE, 0.5f);
    Approach(&pJulia->fIterations, (float)ReadInteger(pJulia->apControl[CONTROL_ITERATIONS]), fSeconds, 0.7f);
}

static void Start(Julia *pJulia, PlaneInfo *ppi)
{
    if (pJulia->clock.clock.bStarted) // a reset: the journey goes on
        return;
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pJulia->fWay = RandomUnit(&random);
    pJulia->fSway = RandomUnit(&random);
    pJulia->fSpun = RandomUnit(&random);
    SettlePalette(&pJulia->palette);
    Follow(pJulia, 1e6f);
}

// ---- The constant

struct Complex {
    float x, y;
};

// Just outside or inside the border of the main body (a cardioid) or of the disc beside it, by turns.
static Complex BorderPoint(float fTurns, float fStretch)
{
    const float f = WrapUnit(fTurns) * 4;
    if (f < 3) { // once around the cardioid
        const float fAngle = f / 3, c = CosineTurn(fAngle), s = SineTurn(fAngle), r = fStretch;
        const float c2 = CosineTurn(2 * fAngle), s2 = SineTurn(2 * fAngle);
        return {0.5f * r * c - 0.25f * r * r * c2, 0.5f * r * s - 0.25f * r * r * s2};
    }
    const float fAngle = f - 3;
    return {-1 + 0.25f * fStretch * CosineTurn(fAngle), 0.25f * fStretch * SineTurn(fAngle)};
}

// The two ways are joined where they touch the real axis: the constant glides from one to the other.
static Complex ConstantOf(const Julia &julia)
{
    const float fSway = 0.03f * SineTurn(julia.fSway);
    const float fStretch = 1.02f + 0.14f * (julia.fOffset + julia.fPulse * 0.6f) + fSway;
    const float fTurns = julia.fWay, fBlend = 0.03f;
    const Complex here = BorderPoint(fTurns, fStretch);
    // Distance, in turns, to the nearer change of ways, at 0 and at 3/4.
    const float fTo0 = std::min(fTurns, 1 - fTurns), fTo3 = std::fabs(fTurns - 0.75f);
    const float fNear = std::min(fTo0, fTo3);
    if (fNear >= fBlend)
        return here;
    const float fMirror = fTo0 < fTo3 ? -(fTurns > 0.5f ? fTurns - 1 : fTurns) : 1.5f - fTurns;
    const Complex there = BorderPoint(fMirror, fStretch);
    const float f = fNear / fBlend, fShare = 0.5f + 0.5f * f * f * (3 - 2 * f);
    return {there.x + (here.x - there.x) * fShare, there.y + (here.y - there.y) * fShare};
}

static void Move(Julia *pJulia, float fSeconds)
{
    AdvancePhase(&pJulia->fWay, pJulia->fSpeed / 90, fSeconds);
    AdvancePhase(&pJulia->fSway, 0.037f, fSeconds);
    AdvancePhase(&pJulia->fSpun, ReadControl(pJulia, CONTROL_SPIN) / 60, fSeconds);
    MovePalette(&pJulia->palette, fSeconds, 0.12f, 0.7f);
}

// ---- The set

struct JuliaView {
    Complex c;
    Complex step; // from one vertex of a row to the next
    int32_t nIterations;
    float fScale; // of the smooth count, to numbers
    float fInside;
};

// Binary logarithm within 0.01, for numbers above 0.
static inline float LogOf(float f)
{
    uint32_t dwBits;
    memcpy(&dwBits, &f, sizeof dwBits);
    const float fExponent = (float)(int32_t)(dwBits >> 23) - 127;
    dwBits = (dwBits & 0x7FFFFFu) | 0x3F800000u;
    float m;
    memcpy(&m, &dwBits, sizeof m);
    return fExponent + (m - 1) * (1.3465f - 0.3465f * (m - 1));
}

struct JuliaBatch {
    float ax[JULIA_BATCH], ay[JULIA_BATCH];
    float afCount[JULIA_BATCH], afEscape2[JULIA_BATCH]; // steps inside; squared distance at the first one outside
    float afNearest2[JULIA_BATCH];                      // squared distance of the orbit from 0
};

// A point that has escaped is carried on: it only grows, and no test of it turns true again.
static inline void Iterate(const JuliaView &view, JuliaBatch &b, int32_t nSteps)
{
    for (int32_t iStep = 0; iStep < nSteps; iStep++)
        for (int32_t i = 0; i < JULIA_BATCH; i++) {
            const float x = b.ax[i], y = b.ay[i], x2 = x * x, y2 = y * y, r2 = x2 + y2;
            const float fInside = r2 < JULIA_ESCAPE2 ? 1.0f : 0.0f;
            b.afEscape2[i] = b.afEscape2[i] < JULIA_ESCAPE2 ? r2 : b.afEscape2[i];
            b.afNearest2[i] = r2 < b.afNearest2[i] ? r2 : b.afNearest2[i];
            b.afCount[i] += fInside;
            b.ay[i] = (x + x) * y + view.c.y;
            b.ax[i] = x2 - y2 + view.c.x;
        }
}

static inline bool AllEscaped(const JuliaBatch &b)
{
    float fLeast = JULIA_ESCAPE2;
    for (int32_t i = 0; i < JULIA_BATCH; i++)
        fLeast = b.afEscape2[i] < fLeast ? b.afEscape2[i] : fLeast;
    return fLeast >= JULIA_ESCAPE2;
}

// Numbers of a row that begins at z. Outside the count runs from 0 at infinity to 0.8 at the border.
STOCK_WIDE static void FillRow(const JuliaView &given, Complex z, int32_t n, float *pfValue)
{
    const JuliaView view = given;
    JuliaBatch b;
    for (int32_t iFirst = 0; iFirst < n; iFirst += JULIA_BATCH) {
        for (int32_t i = 0; i < JULIA_BATCH; i++) {
            b.ax[i] = z.x + (float)(iFirst + i) * view.step.x;
            b.ay[i] = z.y + (float)(iFirst + i) * view.step.y;
            b.afCount[i] = b.afEscape2[i] = 0;
            b.afNearest2[i] = 4;
        }
        for (int32_t iStep = 0; iStep < view.nIterations && !AllEscaped(b); iStep += 8)
            Iterate(view, b, 8);
        for (int32_t i = 0; i < std::min(JULIA_BATCH, n - iFirst); i++) {
            const float fPast = LogOf(std::min(LogOf(std::max(b.afEscape2[i], 2.0f)), 1000.0f) * 0.125f);
            const float fCount = std::max(b.afCount[i] - fPast + 1, 1.0f);
            const float fOutside = 0.8f * std::min(LogOf(fCount) * view.fScale, 1.0f);
            const float fInside = 0.8f + 0.2f * view.fInside * std::min(std::sqrt(b.afNearest2[i]) * 1.6f, 1.0f);
            pfValue[iFirst + i] = b.afEscape2[i] < JULIA_ESCAPE2 ? fInside : fOutside;
        }
    }
}

// The set is the same turned by half: the upper rows repeat the lower ones backwards.
static void FillGrid(const Julia &julia, const FieldGrid &grid)
{
    const float fUnit = 3.0f / std::max(julia.fZoom, 0.5f) / (float)std::min(grid.nWidth, grid.nHeight);
    const float fCell = fUnit * (float)(1 << grid.nCellBits);
    const float c = CosineTurn(julia.fSpun) * fCell, s = SineTurn(julia.fSpun) * fCell;
    JuliaView view = {};
    view.c = ConstantOf(julia);
    view.step = {c, s};
    view.nIterations = std::clamp((int32_t)julia.fIterations, 8, JULIA_ITERATIONS_MOST);
    view.fScale = 1 / std::log2((float)view.nIterations);
    view.fInside = julia.fInside;
    const float xMiddle = 0.5f * (float)(grid.nColumns - 1), yMiddle = 0.5f * (float)(grid.nRows - 1);
    const int32_t nLower = (grid.nRows + 1) / 2;
    for (int32_t iRow = 0; iRow < nLower; iRow++) {
        const float y = (float)iRow - yMiddle;
        FillRow(view, {-xMiddle * c - y * s, -xMiddle * s + y * c}, grid.nColumns, GridRow(grid, iRow));
        std::reverse_copy(GridRow(grid, iRow), GridRow(grid, iRow) + grid.nColumns,
                          GridRow(grid, grid.nRows - 1 - iRow));
    }
}

static uint32_t Draw(Julia *pJulia, PlaneInfo *ppi, const Canvas &canvas)
{
    static constexpr int32_t anFineness[DETAILS] = {120, 300, 4000};
    if (!FitGrid(&pJulia->grid, canvas, anFineness[ReadItem(pJulia->apControl[CONTROL_DETAIL])]))
        return 0;
    const float fSeconds = StepSeconds(&pJulia->clock, ppi);
    Follow(pJulia, fSeconds);
    Move(pJulia, fSeconds);
    FillGrid(*pJulia, pJulia->grid);
    MixPalette(&pJulia->palette, canvas);
    PaintGrid(canvas, pJulia->grid, pJulia->palette.colors);
    return 0;
}

static void Release(Julia *pJulia)
{
    FreeGrid(&pJulia->grid);
}

STOCK_DRAWING_MODULE(Julia)
