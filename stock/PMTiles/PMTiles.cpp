// PMTiles.cpp -- PMTiles.dll, a painter: a pattern of tiles that light up in waves and with the sound
#include "../common/StockHistory.h"
#include "../common/StockModule.h"
#include "../common/StockPen.h"

#define TILE_PIXELS_LEAST 3.0f

enum { SHAPE_SQUARE, SHAPE_ROUND, SHAPE_DIAMOND, SHAPE_MIXED, SHAPES };
enum { LIGHT_WAVES, LIGHT_RINGS, LIGHT_TWINKLE, LIGHT_SOUND, LIGHTS };

enum {
    CONTROL_TILES,
    CONTROL_COUNT,
    CONTROL_MIDDLE,
    CONTROL_SHAPE,
    CONTROL_SIZE,
    CONTROL_LIGHT,
    CONTROL_LEVEL,
    CONTROL_SPEED,
    CONTROL_LENGTH,
    CONTROL_DARK,
    CONTROL_SOFTNESS,
    CONTROL_PLACE,
    CONTROL_SPREAD,
    CONTROL_PAINT,
    CONTROLS
};

static const float afEase[CONTROLS] = {0, 2, 0, 0, 0.6f, 0, 0.07f, 0.6f, 1.5f, 0, 0.6f, 0.4f, 1.5f, 0};

struct Tiles {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aShapeRow[SHAPES], aLightRow[LIGHTS], aPaintRow[PAINT_MODES];
    float afLook[CONTROLS]; // the controls, eased
    DrawClock clock;
    LevelHistory history;
    float afWave[3], afTurn[3]; // turns: how far each wave has come, and where it goes
    float fTwinkle;             // since the start, in turns
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_PAINTER | MODULECAP_INDEXED | MODULECAP_RGB, u"Tiles",
                   u"A pattern of tiles that light up in waves and with the sound");
}

static void AddGridControls(Tiles *pTiles, const ControlMaker &maker)
{
    static const char16_t *const aszShape[SHAPES] = {u"Square", u"Round", u"Diamond", u"Mixed"};
    ControlRecord **ap = pTiles->apControl;
    AddGroup(maker, u"Grid\0", u"Which tiles there are, and what they look like");
    ap[CONTROL_TILES] =
        AddControl(maker, CONTROLTYPE_TILE, u"Grid\0Pattern\0",
                   u"The tiles that there are; the pattern lies on the middle of the picture and repeats", FromFixed(),
                   FLUIDSOURCE_FIXED);
    ap[CONTROL_COUNT] =
        AddFloat(maker, u"Grid\0Count\0", u"Tiles over the picture's height; 32 shows the whole pattern", {1, 64},
                 {8, 18}, 32, FromWave(71000));
    ap[CONTROL_MIDDLE] =
        AddBoolean(maker, u"Grid\0Middle\0", u"The middle of a tile lies in the middle of the picture, not a corner",
                   0.5f, false, FromFixed());
    ap[CONTROL_SHAPE] = AddItemSelect(maker, u"Grid\0Shape\0", u"Of the tiles", pTiles->aShapeRow, aszShape,
                                      SHAPE_SQUARE, FromRandom());
    ap[CONTROL_SIZE] = AddFloat(maker, u"Grid\0Size\0", u"Of a tile that is fully lit, 1 to touch its neighbours",
                                {0.1f, 2}, {0.75f, 1}, 0.9f, FromWave(17000));
    ap[CONTROL_SOFTNESS] = AddFloat(maker, u"Grid\0Softness\0", u"0 for firm edges, 1 for a glow", {0, 1}, {0, 0.5f},
                                    0.1f, FromWave(39000));
}

static void AddControls(Tiles *pTiles, const ControlMaker &maker)
{
    static const char16_t *const aszLight[LIGHTS] = {u"Waves", u"Rings", u"Twinkle", u"Sound from the middle"};
    AddGridControls(pTiles, maker);
    ControlRecord **ap = pTiles->apControl;
    ap[CONTROL_LIGHT] = AddItemSelect(maker, u"Light\0Course\0", u"How the light goes over the tiles",
                                      pTiles->aLightRow, aszLight, LIGHT_WAVES, FromRandom());
    ap[CONTROL_LEVEL] = AddFloat(maker, u"Light\0Level\0", u"How many tiles are lit, or how brightly", {0, 1},
                                 {0.2f, 0.85f}, 0.5f, FromSound(5));
    ap[CONTROL_SPEED] = AddFloat(maker, u"Light\0Speed\0", u"Of the light, in waves a second", {-4, 4}, {0.1f, 0.6f},
                                 0.3f, FromWave(31000));
    ap[CONTROL_LENGTH] = AddFloat(maker, u"Light\0Length\0", u"From one wave to the next, in picture heights",
                                  {0.1f, 4}, {0.4f, 1.3f}, 0.8f, FromWave(47000));
    ap[CONTROL_DARK] =
        AddBoolean(maker, u"Light\0Dark\0", u"Tiles without light are painted dark, which wipes what is there", 0.5f,
                   false, FromFixed());
    ap[CONTROL_PLACE] = AddPlace(maker, u"Where in the palette the light lies");
    ap[CONTROL_SPREAD] = AddSpread(maker, u"How far apart the colors of the tiles lie");
    ap[CONTROL_PAINT] = AddPaintMode(maker, pTiles->aPaintRow, PAINT_OVER);
    SetDependsOn(ap[CONTROL_LENGTH], ap[CONTROL_LIGHT], DEPENDOP_NOTEQUAL, LIGHT_TWINKLE);
}

static void Start(Tiles *pTiles, PlaneInfo *ppi)
{
    StockRandom random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    SettleControls(pTiles->apControl, pTiles->afLook);
    pTiles->clock = {};
    pTiles->history = {};
    for (int32_t i = 0; i < 3; i++) {
        pTiles->afWave[i] = RandomUnit(&random);
        pTiles->afTurn[i] = RandomUnit(&random);
    }
    pTiles->fTwinkle = RandomUnit(&random);
}

static void MoveLight(Tiles *pTiles, float fSeconds)
{
    static const float afRatio[3] = {1, 0.73f, -0.58f}, afTurning[3] = {0.013f, -0.017f, 0.023f};
    for (int32_t i = 0; i < 3; i++) {
        AdvancePhase(&pTiles->afWave[i], pTiles->afLook[CONTROL_SPEED] * afRatio[i], fSeconds);
        AdvancePhase(&pTiles->afTurn[i], afTurning[i], fSeconds);
    }
    pTiles->fTwinkle = std::fmod(pTiles->fTwinkle + pTiles->afLook[CONTROL_SPEED] * fSeconds, 1024.0f);
    FeedHistory(&pTiles->history, pTiles->afLook[CONTROL_LEVEL], fSeconds);
}

// A number of a tile's own, 0 to below 1.
static float ChanceOfTile(int32_t iColumn, int32_t iRow, uint32_t dwSalt)
{
    StockRandom random = {(uint64_t)(uint32_t)iColumn << 32 | ((uint32_t)iRow ^ dwSalt)};
    return RandomUnit(&random);
}

static float EaseUnit(float f)
{
    f = std::clamp(f, 0.0f, 1.0f);
    return f * f * (3 - 2 * f);
}

// 0 to 1 over the picture, with a period of about the wave length.
static float WavesAt(const Tiles *pTiles, float x, float y)
{
    const float fPerUnit = 1 / std::max(pTiles->afLook[CONTROL_LENGTH], 0.1f);
    if (ReadItem(pTiles->apControl[CONTROL_LIGHT]) == LIGHT_RINGS) {
        const float xMiddle = 0.45f * SineTurn(pTiles->afTurn[0]), yMiddle = 0.25f * SineTurn(pTiles->afTurn[2]);
        return FoldUnit(std::hypot(x - xMiddle, y - yMiddle) * fPerUnit - pTiles->afWave[0]);
    }
    float fSum = 0;
    for (int32_t i = 0; i < 3; i++) {
        const float fAlong = x * CosineTurn(pTiles->afTurn[i]) + y * SineTurn(pTiles->afTurn[i]);
        fSum += FoldUnit(fAlong * fPerUnit - pTiles->afWave[i]);
    }
    return EaseUnit(0.5f + 0.85f * (fSum / 3 - 0.5f) * 1.6f);
}

// The light of a tile whose middle lies at x, y of the view; 0 to 1.
static float LightOfTile(const Tiles *pTiles, int32_t iColumn, int32_t iRow, float x, float y)
{
    const float fLevel = pTiles->afLook[CONTROL_LEVEL];
    switch (ReadItem(pTiles->apControl[CONTROL_LIGHT])) {
    case LIGHT_SOUND: {
        const float fAgo = std::hypot(x, y) * 1.4f / std::max(pTiles->afLook[CONTROL_LENGTH], 0.1f);
        return EaseUnit(1.9f * LevelAgo(pTiles->history, std::min(fAgo, 14.0f)) - 0.28f);
    }
    case LIGHT_TWINKLE: {
        // In steps of which every one comes round when the phase wraps.
        const float fPace = (float)(26 + (int32_t)(ChanceOfTile(iColumn, iRow, 0x5u) * 64)) / 64;
        const float fWave = FoldUnit(WrapUnit(pTiles->fTwinkle * fPace + ChanceOfTile(iColumn, iRow, 0)));
        return EaseUnit((fWave - 1 + 0.9f * fLevel) * 2.5f + 0.3f * fLevel);
    }
    default:
        return EaseUnit((WavesAt(pTiles, x, y) - 1 + fLevel) * 2.2f + 0.2f);
    }
}

// ---- Drawing

struct Tile {
    float x, y, fHalf; // pixels
    float fWeight, fPlace;
    uint32_t dwShape;
    float fEdge; // 1 / the share of the half that its edge takes
};

// Coverage over the squared distance from the middle, measured as the shape measures it: no root.
template <uint32_t dwShape>
static void ShadeTile(const Tile &tile, float x, float y, int32_t nPixels, float *pfCoverage)
{
    const float fPerHalf = 1 / tile.fHalf, dy = std::fabs(y - tile.y) * fPerHalf;
    for (int32_t i = 0; i < nPixels; i++) {
        const float dx = std::fabs(x + (float)i - tile.x) * fPerHalf;
        const float fDiamond = dx + dy, fSquare = dx > dy ? dx : dy;
        const float fAway2 = dwShape == SHAPE_ROUND     ? dx * dx + dy * dy
                             : dwShape == SHAPE_DIAMOND ? fDiamond * fDiamond
                                                        : fSquare * fSquare;
        const float fInside = (1 - fAway2) * tile.fEdge;
        pfCoverage[i] = (fInside < 0 ? 0 : fInside > 1 ? 1 : fInside) * tile.fWeight;
    }
}

// One color laid over a span of a color plane: whole numbers, two channels at a time.
static void LayColor(uint32_t *pPixel, int32_t nPixels, const float *pfCoverage, uint32_t dwInk)
{
    const uint32_t dwInkOuter = dwInk & 0xFF00FFu, dwInkMiddle = dwInk & 0x00FF00u;
    for (int32_t i = 0; i < nPixels; i++) {
        const uint32_t dwShare = (uint32_t)(int32_t)(pfCoverage[i] * 256 + 0.5f), dwRest = 256 - dwShare;
        const uint32_t dwOuter = (pPixel[i] & 0xFF00FFu) * dwRest + dwInkOuter * dwShare + 0x800080u;
        const uint32_t dwMiddle = (pPixel[i] & 0x00FF00u) * dwRest + dwInkMiddle * dwShare + 0x008000u;
        pPixel[i] = (pPixel[i] & 0xFF000000u) | (dwOuter >> 8 & 0xFF00FFu) | (dwMiddle >> 8 & 0x00FF00u);
    }
}

static void PaintTile(const Canvas &canvas, const Paint &paint, const Tile &tile)
{
    const int32_t xFirst = (int32_t)std::max(std::ceil(tile.x - tile.fHalf), 0.0f);
    const int32_t yFirst = (int32_t)std::max(std::ceil(tile.y - tile.fHalf), 0.0f);
    const int32_t xEnd = std::min((int32_t)std::max(tile.x + tile.fHalf + 1, 0.0f), canvas.nWidth);
    const int32_t yEnd = std::min((int32_t)std::max(tile.y + tile.fHalf + 1, 0.0f), canvas.nHeight);
    const bool bLay = !canvas.bIndexed && paint.dwMode == PAINT_OVER;
    const uint32_t dwInk = ColorAt(canvas, tile.fPlace);
    const auto Shade = tile.dwShape == SHAPE_ROUND     ? ShadeTile<SHAPE_ROUND>
                       : tile.dwShape == SHAPE_DIAMOND ? ShadeTile<SHAPE_DIAMOND>
                                                       : ShadeTile<SHAPE_SQUARE>;
    InkSpan ink;
    std::fill_n(ink.afPlace, DRAWING_SPAN, tile.fPlace);
    for (int32_t y = yFirst; y < yEnd; y++)
        for (int32_t x = xFirst; x < xEnd; x += DRAWING_SPAN) {
            const int32_t nPixels = std::min(xEnd - x, DRAWING_SPAN);
            Shade(tile, (float)x, (float)y, nPixels, ink.afCoverage);
            if (bLay)
                LayColor(CanvasRow(canvas, y) + x, nPixels, ink.afCoverage, dwInk);
            else
                PaintSpan(canvas, paint, x, y, nPixels, ink);
        }
}

// Row 0 of the mask is its top one; the middle of the mask lies on the middle of the picture.
static bool TileIsOn(const ControlRecord *pctl, int32_t iColumn, int32_t iRow)
{
    if (!pctl || !pctl->Tile.pTileMask || pctl->Tile.nXTiles < 1 || pctl->Tile.nYTiles < 1)
        return true;
    const int32_t nColumns = (int32_t)std::min(pctl->Tile.nXTiles, (uint32_t)CONTROL_TILES_MAX);
    const int32_t nRows = (int32_t)std::min(pctl->Tile.nYTiles, (uint32_t)CONTROL_TILES_MAX);
    const auto Wrap = [](int32_t i, int32_t n) { return (i % n + n) % n; };
    const int32_t x = Wrap(iColumn + nColumns / 2, nColumns), y = Wrap(nRows - nRows / 2 - 1 - iRow, nRows);
    return pctl->Tile.pTileMask[y * nColumns + x] != 0;
}

static void DrawTile(const Tiles *pTiles, const Canvas &canvas, const Paint &paint, const View &view, float fCell,
                     int32_t iColumn, int32_t iRow)
{
    const float *pfLook = pTiles->afLook;
    const float fAside = ReadBoolean(pTiles->apControl[CONTROL_MIDDLE]) ? 0 : 0.5f;
    const float x = ((float)iColumn + fAside) * fCell, y = ((float)iRow + fAside) * fCell;
    const float fLight = LightOfTile(pTiles, iColumn, iRow, x / view.fSide, y / view.fSide);
    const bool bDark = ReadBoolean(pTiles->apControl[CONTROL_DARK]);
    if (fLight < 0.02f && !bDark)
        return;
    const float fChance = ChanceOfTile(iColumn, iRow, 0x9u);
    Tile tile = {};
    tile.x = view.xMiddle + x;
    tile.y = view.yMiddle + y;
    tile.fHalf = std::max(0.5f * fCell * pfLook[CONTROL_SIZE] * (bDark ? 1 : 0.35f + 0.65f * fLight), 0.6f);
    tile.fWeight = LayerWeight(paint, bDark ? 0.3f : 0.45f * fLight);
    tile.dwShape = ReadItem(pTiles->apControl[CONTROL_SHAPE]);
    if (tile.dwShape == SHAPE_MIXED)
        tile.dwShape = std::min((uint32_t)(ChanceOfTile(iColumn, iRow, 0x7u) * 3), 2u);
    const float fTurns = pfLook[CONTROL_PLACE] + pfLook[CONTROL_SPREAD] * (0.6f * fLight + 0.5f * fChance);
    tile.fPlace = PlaceOfTurns(fTurns) * (bDark ? fLight : 0.6f + 0.4f * fLight);
    tile.fEdge = std::min(1 / (0.02f + 1.6f * pfLook[CONTROL_SOFTNESS]), std::max(0.5f * tile.fHalf, 0.5f));
    PaintTile(canvas, paint, tile);
}

static uint32_t Draw(Tiles *pTiles, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pTiles->clock, ppi);
    EaseControls(pTiles->apControl, afEase, pTiles->afLook, fSeconds);
    MoveLight(pTiles, fSeconds);
    const Paint paint = MakePaint(ppi, ReadItem(pTiles->apControl[CONTROL_PAINT]), fSeconds);
    if (paint.fLayers <= 0) // no time has passed: there is nothing to add
        return 0;
    const View view = ViewOf(canvas);
    const float fCell = std::max(view.fSide / std::max(pTiles->afLook[CONTROL_COUNT], 1.0f), TILE_PIXELS_LEAST);
    const int32_t nColumns = (int32_t)(view.xReach * view.fSide / fCell) + 1; // on each side of the middle
    const int32_t nRows = (int32_t)(view.yReach * view.fSide / fCell) + 1;
    const int32_t nMore = ReadBoolean(pTiles->apControl[CONTROL_MIDDLE]); // both ends of a row look alike
    for (int32_t iRow = -nRows; iRow < nRows + nMore; iRow++)
        for (int32_t iColumn = -nColumns; iColumn < nColumns + nMore; iColumn++)
            if (TileIsOn(pTiles->apControl[CONTROL_TILES], iColumn, iRow))
                DrawTile(pTiles, canvas, paint, view, fCell, iColumn, iRow);
    return 0;
}

STOCK_DRAWING_MODULE(Tiles)
