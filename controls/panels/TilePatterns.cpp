// TilePatterns.cpp -- the grid of a tile control: its buttons, which tile a pixel shows, its picture
#include "controls/panels/TilePatterns.h"

#include "toolkit/Meters.h"

#include <algorithm>

namespace {

constexpr u32 MASK_TILES = CONTROL_TILES_MAX * CONTROL_TILES_MAX; // what every mask has room for
constexpr u32 LINE_PIXEL = 0xFF000000;

constexpr TileButton asButton[] = {
    {u"All On", [](TileAt, bool) { return 1u; }},
    {u"All Off", [](TileAt, bool) { return 0u; }},
    {u"Checker", [](TileAt tile, bool) { return (tile.iRow + tile.iColumn) % 2; }},
    {u"Rows", [](TileAt tile, bool) { return tile.iRow % 2; }},
    {u"Columns", [](TileAt tile, bool) { return tile.iColumn % 2; }},
    {u"Invert", [](TileAt, bool bOn) { return bOn ? 0u : 1u; }},
};

u32 IndexOf(const TileGrid &grid, TileAt tile)
{
    return tile.iRow * grid.nColumns + tile.iColumn;
}

// Of a pixel within nPixels.
u32 CellOf(u32 nCells, i32 iPixel, i32 nPixels)
{
    return static_cast<u32>(u64{nCells} * static_cast<u64>(iPixel) / static_cast<u64>(nPixels));
}

// The first pixel of that cell, or of a later one where the cell has none.
i32 FirstPixel(u32 nCells, u32 iCell, i32 nPixels)
{
    return static_cast<i32>((u64{iCell} * static_cast<u64>(nPixels) + nCells - 1) / nCells);
}

u32 Step(u32 i, i32 nSteps, u32 nCells)
{
    return static_cast<u32>(std::clamp<i64>(i64{i} + nSteps, 0, i64{nCells} - 1));
}

// The pixels of a line; the last one ends with the picture.
struct LinePixels {
    i32 iFirst, iEnd;
};
std::vector<LinePixels> LinesOf(u32 nCells, i32 nPixels, i32 nLine)
{
    std::vector<LinePixels> lines;
    for (i32 i : TileLines(nCells, nPixels)) {
        const i32 iFirst = std::max(std::min(i, nPixels - nLine), 0);
        lines.push_back({iFirst, std::min(iFirst + nLine, nPixels)});
    }
    return lines;
}

void PaintLines(const TileGrid &grid, std::span<u32> pixels, i32 w, i32 h, i32 nLine)
{
    const auto fill = [=](i32 x, i32 y, i32 n) { std::fill_n(pixels.begin() + i64{y} * w + x, n, LINE_PIXEL); };
    for (const LinePixels &line : LinesOf(grid.nRows, h, nLine))
        for (i32 y = line.iFirst; y < line.iEnd; y++)
            fill(0, y, w);
    for (const LinePixels &line : LinesOf(grid.nColumns, w, nLine))
        for (i32 y = 0; y < h; y++)
            fill(line.iFirst, y, line.iEnd - line.iFirst);
}

void PaintTile(const TileGrid &grid, TileAt tile, std::span<u32> pixels, i32 w, i32 h, u32 dwPixel)
{
    const PixelBox box = TileBox(grid, tile, w, h);
    for (i32 y = box.y; y < box.y + box.nHeight; y++)
        std::fill_n(pixels.begin() + i64{y} * w + box.x, box.nWidth, dwPixel);
}

} // namespace

TileGrid TilesOf(const ControlRecord *pctl)
{
    if (!pctl || pctl->Base.dwType != CONTROLTYPE_TILE || !pctl->Tile.pTileMask)
        return {};
    const ControlTile &Tile = pctl->Tile;
    const u32 nRowsMax = Tile.nXTiles ? MASK_TILES / Tile.nXTiles : 0;
    const u32 nRows = std::min(Tile.nYTiles, nRowsMax);
    return nRows ? TileGrid{Tile.nXTiles, nRows, Tile.pTileMask} : TileGrid{};
}

bool TileExists(const TileGrid &grid, TileAt tile)
{
    return tile.iRow < grid.nRows && tile.iColumn < grid.nColumns;
}

bool TileIsOn(const TileGrid &grid, TileAt tile)
{
    return TileExists(grid, tile) && grid.pTileMask[IndexOf(grid, tile)] != 0;
}

std::span<const TileButton> TileButtons()
{
    return asButton;
}

std::vector<FieldWrite> PatternWrites(const EditPlace &place, const TileGrid &grid, const TileButton &button)
{
    std::vector<FieldWrite> writes;
    for (TileAt tile = {}; tile.iRow < grid.nRows; tile.iRow++)
        for (tile.iColumn = 0; tile.iColumn < grid.nColumns; tile.iColumn++)
            writes.push_back(
                WriteNumber(place, EditField::Tile, button.pfnTile(tile, TileIsOn(grid, tile)), IndexOf(grid, tile)));
    return writes;
}

std::vector<FieldWrite> TurnWrites(const EditPlace &place, const TileGrid &grid, TileAt tile)
{
    if (!TileExists(grid, tile))
        return {};
    return {WriteNumber(place, EditField::Tile, TileIsOn(grid, tile) ? 0 : 1, IndexOf(grid, tile))};
}

bool HitTile(const TileGrid &grid, i32 x, i32 y, i32 w, i32 h, TileAt *pTile)
{
    if (x < 0 || y < 0 || x >= w || y >= h || !TileExists(grid, {}))
        return false;
    *pTile = {CellOf(grid.nRows, y, h), CellOf(grid.nColumns, x, w)};
    return true;
}

TileAt StepTile(const TileGrid &grid, TileAt tile, i32 nRows, i32 nColumns)
{
    if (!TileExists(grid, {}))
        return {};
    return {Step(tile.iRow, nRows, grid.nRows), Step(tile.iColumn, nColumns, grid.nColumns)};
}

PixelBox TileBox(const TileGrid &grid, TileAt tile, i32 w, i32 h)
{
    if (!TileExists(grid, tile) || w <= 0 || h <= 0)
        return {};
    const i32 x = FirstPixel(grid.nColumns, tile.iColumn, w), y = FirstPixel(grid.nRows, tile.iRow, h);
    return {x, y, FirstPixel(grid.nColumns, tile.iColumn + 1, w) - x, FirstPixel(grid.nRows, tile.iRow + 1, h) - y};
}

std::vector<i32> TileLines(u32 nCells, i32 nPixels)
{
    std::vector<i32> lines;
    for (u32 i = 0; nCells && nPixels > 0 && i <= nCells; i++)
        lines.push_back(std::min(static_cast<i32>(u64{i} * static_cast<u64>(nPixels) / nCells), nPixels - 1));
    return lines;
}

void PaintTiles(const TileGrid &grid, const TileColors &colors, std::span<u32> pixels, i32 w, i32 h, i32 nLine)
{
    if (w <= 0 || h <= 0 || pixels.size() != static_cast<size_t>(w) * static_cast<size_t>(h))
        return;
    const u32 dwOn = PixelOfColor(colors.dwOn);
    std::fill(pixels.begin(), pixels.end(), PixelOfColor(colors.dwOff));
    for (TileAt tile = {}; tile.iRow < grid.nRows; tile.iRow++)
        for (tile.iColumn = 0; tile.iColumn < grid.nColumns; tile.iColumn++)
            if (TileIsOn(grid, tile))
                PaintTile(grid, tile, pixels, w, h, dwOn);
    PaintLines(grid, pixels, w, h, nLine);
}
