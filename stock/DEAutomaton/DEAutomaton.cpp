// DEAutomaton.cpp -- DEAutomaton.dll, a drawing effect: a cellular automaton that lives on what is painted
#include "CellGrid.h"

#include "../common/StockLight.h"
#include "../common/StockModule.h"
#include "../common/StockScratch.h"

#define GENERATIONS_MOST 6    // in one drawing
#define ASLEEP_GENERATIONS 12 // so many with hardly a change, and new seeds fall
#define PLACES 4096           // steps of the palette between which cells are mixed

enum {
    CONTROL_RULE,
    CONTROL_NEIGHBOURS,
    CONTROL_STATES,
    CONTROL_THRESHOLD,
    CONTROL_SPEED,
    CONTROL_SIZE,
    CONTROL_SOFTNESS,
    CONTROL_SEEDS,
    CONTROL_FEED,
    CONTROL_AMOUNT,
    CONTROL_FOLD,
    CONTROLS
};

// Which cells a pixel of a row or column lies between, and how near it is to the upper one, in 1/256.
struct CellPlace {
    int32_t iLower, iUpper, nPart;
};

struct Automaton {
    ControlRecord *apControl[CONTROLS];
    ItemSelectRow aRuleRow[RULES], aNeighboursRow[NEIGHBOURS_KINDS];
    DrawClock clock;
    StockRandom random;
    CellGrid grid;
    float fGeneration, fSeedsDue, fFeedDue; // parts of the next one
    float fAmount;                          // eased
    uint32_t nAsleep, nFrame;
    ColumnTables columns; // of CellPlaces
    uint16_t *pwShown;    // per cell, the place that the picture had there when it was left; and room for another row
};

MODULE_EXPORT void ModuleGetDescription(ModuleDescription *pmd)
{
    DescribeModule(pmd, MODULECLASS_DRAWING, MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB, u"Automaton",
                   u"Cells that push each other through the palette: spirals that grow out of what is painted");
}

static void AddRuleControls(Automaton *pAutomaton, const ControlMaker &maker)
{
    static const char16_t *const aszRule[RULES] = {u"Cyclic", u"Excitable"};
    static const char16_t *const aszNeighbours[NEIGHBOURS_KINDS] = {u"4", u"8", u"24"};
    ControlRecord **ap = pAutomaton->apControl;
    ap[CONTROL_RULE] = AddItemSelect(
        maker, u"Rule\0Rule\0", u"Cyclic: states push the one before them. Excitable: waves run over cells at rest",
        pAutomaton->aRuleRow, aszRule, RULE_CYCLIC, FromFixed());
    ap[CONTROL_NEIGHBOURS] = AddItemSelect(maker, u"Rule\0Neighbours\0", u"Cells that a cell looks at",
                                           pAutomaton->aNeighboursRow, aszNeighbours, NEIGHBOURS_24, FromFixed());
    ap[CONTROL_STATES] = AddInteger(maker, u"Rule\0States\0", u"Steps from the beginning of the palette to its end",
                                    {3, CELL_STATES_MOST}, {8, 14}, 12, FromRandom());
    ap[CONTROL_THRESHOLD] = AddInteger(maker, u"Rule\0Threshold\0", u"Neighbours that it takes to push a cell on",
                                       {1, 8}, {2, 4}, 3, FromFixed());
    ap[CONTROL_SPEED] =
        AddFloat(maker, u"Rule\0Speed\0", u"Generations in a second", {0, 120}, {6, 26}, 14, FromSound(10));
}

static void AddControls(Automaton *pAutomaton, const ControlMaker &maker)
{
    ControlRecord **ap = pAutomaton->apControl;
    AddRuleControls(pAutomaton, maker);
    ap[CONTROL_SIZE] = AddFloat(maker, u"Cells\0Size\0", u"In percent of the picture's height", {0.2f, 10},
                                {0.5f, 1.8f}, 0.9f, FromFixed());
    ap[CONTROL_SOFTNESS] = AddFloat(maker, u"Cells\0Softness\0", u"0 shows square cells, 1 runs them into each other",
                                    {0, 1}, {0, 1}, 1, FromFixed());
    ap[CONTROL_SEEDS] =
        AddFloat(maker, u"Life\0Seeds\0", u"Spirals that are sown in a second", {0, 20}, {0, 4}, 0.5f, FromSound(2));
    ap[CONTROL_FEED] =
        AddFloat(maker, u"Life\0Feed\0", u"How often cells take on what was painted over them, 1 for every generation",
                 {0, 1}, {0.02f, 0.25f}, 0.1f, FromWave(21000));
    ap[CONTROL_AMOUNT] = AddFloat(maker, u"Picture\0Amount\0", u"How much of the picture gives way to the cells",
                                  {0, 1}, {0.5f, 1}, 1, FromFixed());
    ap[CONTROL_FOLD] = AddBoolean(maker, u"Picture\0Fold\0", u"Runs through the palette there and back, without a seam",
                                  0.3f, true, FromFixed());
}

static CellRule ReadRule(const Automaton *pAutomaton)
{
    return {ReadItem(pAutomaton->apControl[CONTROL_RULE]), ReadItem(pAutomaton->apControl[CONTROL_NEIGHBOURS]),
            (uint8_t)std::max(ReadInteger(pAutomaton->apControl[CONTROL_STATES]), 3),
            (uint8_t)std::max(ReadInteger(pAutomaton->apControl[CONTROL_THRESHOLD]), 1)};
}

static void Start(Automaton *pAutomaton, PlaneInfo *ppi)
{
    pAutomaton->random = {ppi->hdc ? ppi->hdc->qwSeed : 0};
    pAutomaton->clock = {};
    pAutomaton->fGeneration = pAutomaton->fSeedsDue = pAutomaton->fFeedDue = 0;
    pAutomaton->nAsleep = 0;
    pAutomaton->fAmount = ReadFloat(pAutomaton->apControl[CONTROL_AMOUNT]);
    FreeCells(&pAutomaton->grid); // the first drawing fills it anew
}

// ---- The cells on the picture

static void SowSeeds(Automaton *pAutomaton, int32_t nSeeds, uint8_t bStates)
{
    const float fSide = (float)std::min(pAutomaton->grid.nColumns, pAutomaton->grid.nRows);
    for (int32_t i = 0; i < nSeeds; i++)
        PutSeed(pAutomaton->grid, &pAutomaton->random, fSide * RandomBetween(&pAutomaton->random, 0.03f, 0.08f),
                bStates);
}

// Makes the grid fit the picture; a new one is filled. False if there is no memory.
static bool FitAutomaton(Automaton *pAutomaton, const Canvas &canvas, const CellRule &rule)
{
    CellGrid &grid = pAutomaton->grid;
    const float fCell = std::max(PercentOfHeight(canvas, ReadFloat(pAutomaton->apControl[CONTROL_SIZE])), 1.0f);
    const int32_t nRows = std::max((int32_t)((float)canvas.nHeight / fCell), 1);
    const int32_t nColumns = std::clamp((int32_t)((float)canvas.nWidth / fCell), 1, 4096);
    if (!FitColumns(&pAutomaton->columns, canvas.nWidth, sizeof(CellPlace)))
        return false;
    if (grid.nColumns == nColumns && grid.nRows == nRows)
        return true;
    const bool bNew = !grid.pbCells;
    uint16_t *pwShown = (uint16_t *)calloc((size_t)nColumns * ((size_t)nRows + 1), sizeof(uint16_t));
    if (!pwShown || !ResizeCells(&grid, nColumns, nRows)) {
        free(pwShown);
        return false;
    }
    free(pAutomaton->pwShown);
    pAutomaton->pwShown = pwShown;
    if (bNew)
        FillCells(grid, &pAutomaton->random, rule.bStates);
    return true;
}

// The pixel in the middle of a cell.
static int32_t MiddlePixel(int32_t iCell, int32_t nCells, int32_t nPixels)
{
    return (int32_t)(((int64_t)iCell * 2 + 1) * nPixels / (2 * (int64_t)nCells));
}

static int32_t PlaceOfPixel(const Canvas &canvas, uint32_t dwPixel)
{
    if (!canvas.bIndexed)
        return (int32_t)BrightnessOf(dwPixel) * (PLACES - 1) / 255;
    const int32_t nTop = std::max(canvas.nColors - 1, 1);
    return std::min((int32_t)(dwPixel & (PALETTE_COLORS_MAX - 1)), nTop) * (PLACES - 1) / nTop;
}

struct FeedArea {
    int32_t x, y, nRadius; // in cells
};

// Where the picture is not what the cells had made of it, somebody has painted: cells of the area take it on.
static void FeedCells(const Automaton *pAutomaton, const Canvas &canvas, const CellRule &rule, const FeedArea &area,
                      bool bFold)
{
    const CellGrid &grid = pAutomaton->grid;
    const int32_t nTolerance = 3 * PLACES / (bFold ? rule.bStates : 2 * rule.bStates);
    const int32_t nStates = bFold ? rule.bStates / 2 : rule.bStates - 1;
    for (int32_t y = std::max(area.y - area.nRadius, 0); y < std::min(area.y + area.nRadius, grid.nRows); y++) {
        const uint32_t *pdwRow = CanvasRow(canvas, MiddlePixel(y, grid.nRows, canvas.nHeight));
        const uint16_t *pwShown = pAutomaton->pwShown + (size_t)y * (size_t)grid.nColumns;
        for (int32_t x = std::max(area.x - area.nRadius, 0); x < std::min(area.x + area.nRadius, grid.nColumns); x++) {
            const int32_t nPlace = PlaceOfPixel(canvas, pdwRow[MiddlePixel(x, grid.nColumns, canvas.nWidth)]);
            const int64_t nAcross = x - area.x, nUp = y - area.y;
            if (nAcross * nAcross + nUp * nUp < (int64_t)area.nRadius * area.nRadius &&
                std::abs(nPlace - pwShown[x]) > nTolerance)
                PutCell(grid, x, y, (uint8_t)((nPlace * nStates + PLACES / 2) / PLACES));
        }
    }
}

// All that was painted, every now and then in full, so that shapes stay shapes; of a picture that is always fresh only
// a disc here and there, for all of it would be strange to the cells.
static void TakePicture(Automaton *pAutomaton, const Canvas &canvas, const CellRule &rule, float fGenerations,
                        bool bFresh, bool bFold)
{
    pAutomaton->fFeedDue += std::min(fGenerations, 1.0f) * ReadFloat(pAutomaton->apControl[CONTROL_FEED]);
    if (pAutomaton->fFeedDue < 1)
        return;
    pAutomaton->fFeedDue = 0;
    const CellGrid &grid = pAutomaton->grid;
    FeedArea area = {grid.nColumns / 2, grid.nRows / 2, grid.nColumns + grid.nRows};
    if (bFresh)
        area = {(int32_t)RandomBelow(&pAutomaton->random, (uint32_t)grid.nColumns),
                (int32_t)RandomBelow(&pAutomaton->random, (uint32_t)grid.nRows), grid.nRows / 10 + 1};
    FeedCells(pAutomaton, canvas, rule, area, bFold);
}

static void LiveOn(Automaton *pAutomaton, const CellRule &rule, float fSeconds)
{
    const CellGrid &grid = pAutomaton->grid;
    pAutomaton->fSeedsDue =
        std::min(pAutomaton->fSeedsDue + fSeconds * ReadFloat(pAutomaton->apControl[CONTROL_SEEDS]), 8.0f);
    SowSeeds(pAutomaton, (int32_t)pAutomaton->fSeedsDue, rule.bStates);
    pAutomaton->fSeedsDue -= std::floor(pAutomaton->fSeedsDue);
    pAutomaton->fGeneration += fSeconds * ReadFloat(pAutomaton->apControl[CONTROL_SPEED]);
    for (int32_t i = 0; pAutomaton->fGeneration >= 1 && i < GENERATIONS_MOST; i++, pAutomaton->fGeneration -= 1) {
        const int32_t nMoved = StepCells(&pAutomaton->grid, rule);
        pAutomaton->nAsleep = nMoved > grid.nColumns * grid.nRows / 100 ? 0 : pAutomaton->nAsleep + 1;
        if (pAutomaton->nAsleep > ASLEEP_GENERATIONS) {
            SowSeeds(pAutomaton, 4, rule.bStates);
            pAutomaton->nAsleep = 0;
        }
    }
    pAutomaton->fGeneration = std::min(pAutomaton->fGeneration, 1.0f);
}

// ---- Showing them

// Where in the palette each state is, at rest and on its way there from the one before.
struct StatePlaces {
    uint16_t awPlace[2][CELL_STATES_MOST];
};

static StatePlaces PlacesOf(const CellRule &rule, float fGeneration, bool bFold)
{
    StatePlaces places;
    for (int32_t iMoved = 0; iMoved < 2; iMoved++)
        for (int32_t i = 0; i < CELL_STATES_MOST; i++) {
            const float fTurn = WrapUnit(((float)i - (float)iMoved * (1 - fGeneration)) / (float)rule.bStates);
            const float fPlace = bFold ? 1 - std::fabs(2 * fTurn - 1) : fTurn;
            places.awPlace[iMoved][i] = (uint16_t)(fPlace * (PLACES - 1));
        }
    return places;
}

static CellPlace PlaceBetween(int32_t iPixel, int32_t nPixels, int32_t nCells, float fSoftness)
{
    const float f = ((float)iPixel + 0.5f) * (float)nCells / (float)nPixels - 0.5f;
    const int32_t iLower = (int32_t)std::floor(f);
    const float fPart = std::clamp((f - (float)iLower - 0.5f) / std::max(fSoftness, 0.01f) + 0.5f, 0.0f, 1.0f);
    return {std::clamp(iLower, 0, nCells - 1), std::clamp(iLower + 1, 0, nCells - 1), (int32_t)(fPart * 256)};
}

// The places of the cells of a row, into pwShown: the picture is left like this there.
static void PlaceCells(const Automaton *pAutomaton, const StatePlaces &places, int32_t y)
{
    const CellGrid &grid = pAutomaton->grid;
    const uint8_t *pbCells = CellRow(grid, grid.pbCells, y), *pbMoved = MovedRow(grid, y);
    uint16_t *pwShown = pAutomaton->pwShown + (size_t)y * (size_t)grid.nColumns;
    for (int32_t x = 0; x < grid.nColumns; x++)
        pwShown[x] = places.awPlace[pbMoved[x]][pbCells[x]];
}

// The cells between two rows, in 1/16. Returns them in the room for another row.
static const uint16_t *MixRows(const Automaton *pAutomaton, const CellPlace &row)
{
    const CellGrid &grid = pAutomaton->grid;
    const auto Row = [&](int32_t y) { return pAutomaton->pwShown + (size_t)y * (size_t)grid.nColumns; };
    const uint16_t *pwLower = Row(row.iLower), *pwUpper = Row(row.iUpper);
    uint16_t *pwMixed = Row(grid.nRows);
    for (int32_t i = 0; i < grid.nColumns; i++)
        pwMixed[i] = (uint16_t)((pwLower[i] * (256 - row.nPart) + pwUpper[i] * row.nPart) >> 4);
    return pwMixed;
}

struct CellPaint {
    uint32_t dwAmount;       // in 1/256
    uint32_t adwInk[PLACES]; // index or color
};

static void FillPaint(CellPaint *pPaint, const Canvas &canvas, float fAmount)
{
    pPaint->dwAmount = (uint32_t)(fAmount * 256 + 0.5f);
    for (int32_t i = 0; i < PLACES; i++)
        pPaint->adwInk[i] = canvas.bIndexed ? (uint32_t)(i * (canvas.nColors - 1) + (PLACES - 1) / 2) / (PLACES - 1)
                                            : ColorAt(canvas, (float)i * (1.0f / (PLACES - 1))) & 0xFFFFFFu;
}

static inline uint32_t MixPixel(const Canvas &canvas, uint32_t dwOld, uint32_t dwInk, uint32_t dwAmount,
                                uint32_t dwRounding)
{
    if (canvas.bIndexed)
        return (std::min(dwOld, (uint32_t)canvas.nColors - 1) * (256 - dwAmount) + dwInk * dwAmount + dwRounding) >> 8;
    const auto Mix = [&](uint32_t dwMask, uint32_t dwRound) {
        return ((dwOld & dwMask) * (256 - dwAmount) + (dwInk & dwMask) * dwAmount + dwRound) >> 8 & dwMask;
    };
    return (dwOld & 0xFF000000u) | Mix(0xFF00FF, dwRounding * 0x00010001u) | Mix(0x00FF00, dwRounding << 8);
}

static void PaintRow(const CellPaint &paint, const Canvas &canvas, const CellPlace *pColumns, const uint16_t *pwCells,
                     int32_t y, uint32_t nFrame)
{
    uint32_t *pdwRow = CanvasRow(canvas, y), dwRounding = RoundingStart(y, nFrame);
    const uint32_t dwKept = canvas.bIndexed ? 0 : 0xFF000000u;
    for (int32_t x = 0; x < canvas.nWidth; x++, dwRounding += ROUNDING_X) {
        const CellPlace &column = pColumns[x];
        const int32_t nPlace = pwCells[column.iLower] * (256 - column.nPart) + pwCells[column.iUpper] * column.nPart;
        const uint32_t dwInk = paint.adwInk[nPlace >> 12];
        pdwRow[x] = paint.dwAmount == 256 ? (pdwRow[x] & dwKept) | dwInk
                                          : MixPixel(canvas, pdwRow[x], dwInk, paint.dwAmount, dwRounding >> 8 & 255);
    }
}

static void ShowCells(Automaton *pAutomaton, const Canvas &canvas, const CellRule &rule, bool bFold)
{
    const CellGrid &grid = pAutomaton->grid;
    const StatePlaces places = PlacesOf(rule, pAutomaton->fGeneration, bFold);
    const float fSoftness = ReadFloat(pAutomaton->apControl[CONTROL_SOFTNESS]);
    CellPaint paint;
    FillPaint(&paint, canvas, pAutomaton->fAmount);
    CellPlace *pColumns = (CellPlace *)pAutomaton->columns.pv;
    for (int32_t x = 0; x < canvas.nWidth; x++)
        pColumns[x] = PlaceBetween(x, canvas.nWidth, grid.nColumns, fSoftness);
    for (int32_t y = 0; y < grid.nRows; y++)
        PlaceCells(pAutomaton, places, y);
    for (int32_t y = 0; y < canvas.nHeight; y++)
        PaintRow(paint, canvas, pColumns, MixRows(pAutomaton, PlaceBetween(y, canvas.nHeight, grid.nRows, fSoftness)),
                 y, pAutomaton->nFrame);
}

static uint32_t Draw(Automaton *pAutomaton, PlaneInfo *ppi, const Canvas &canvas)
{
    const float fSeconds = StepSeconds(&pAutomaton->clock, ppi);
    const CellRule rule = ReadRule(pAutomaton);
    const bool bFold = ReadBoolean(pAutomaton->apControl[CONTROL_FOLD]);
    Approach(&pAutomaton->fAmount, ReadFloat(pAutomaton->apControl[CONTROL_AMOUNT]), fSeconds, 0.3f);
    if (!FitAutomaton(pAutomaton, canvas, rule))
        return 0;
    LimitCells(pAutomaton->grid, rule.bStates);
    const float fGenerations = fSeconds * ReadFloat(pAutomaton->apControl[CONTROL_SPEED]);
    TakePicture(pAutomaton, canvas, rule, fGenerations, IsFreshPicture(ppi), bFold);
    LiveOn(pAutomaton, rule, fSeconds);
    ShowCells(pAutomaton, canvas, rule, bFold);
    pAutomaton->nFrame++;
    return 0;
}

static void Release(Automaton *pAutomaton)
{
    FreeCells(&pAutomaton->grid);
    FreeColumns(&pAutomaton->columns);
    free(pAutomaton->pwShown);
    pAutomaton->pwShown = nullptr;
}

STOCK_DRAWING_MODULE(Automaton)
