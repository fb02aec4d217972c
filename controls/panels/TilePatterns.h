// TilePatterns.h -- the grid of a tile control: its buttons, which tile a pixel shows, its picture
#pragma once

#include "editing/EditFields.h"

#include <span>

// The tiles of a record, as far as its mask reaches: the sizes may hold anything.
struct TileGrid {
    u32 nColumns, nRows;  // 0: no tiles
    const u32 *pTileMask; // index = row x nColumns + column
};
// Null, or a record of another type: no tiles.
TileGrid TilesOf(const ControlRecord *pctl);

struct TileAt {
    u32 iRow, iColumn;

    bool operator==(const TileAt &) const = default;
};
bool TileExists(const TileGrid &grid, TileAt tile);
// False where there is no such tile.
bool TileIsOn(const TileGrid &grid, TileAt tile);

struct TileButton {
    const char16_t *pszText;
    u32 (*pfnTile)(TileAt tile, bool bOn); // what the mask's entry becomes
};
std::span<const TileButton> TileButtons();

// Writes for the whole grid, and for one tile that is turned over. Empty: there is nothing to write.
std::vector<FieldWrite> PatternWrites(const EditPlace &place, const TileGrid &grid, const TileButton &button);
std::vector<FieldWrite> TurnWrites(const EditPlace &place, const TileGrid &grid, TileAt tile);

// The tile that a pixel of the grid's w x h shows. False: the pixel lies outside, or there are no tiles.
bool HitTile(const TileGrid &grid, i32 x, i32 y, i32 w, i32 h, TileAt *pTile);
// The nearest tile of the grid after a step; steps stop at its edges. Without tiles 0, 0.
TileAt StepTile(const TileGrid &grid, TileAt tile, i32 nRows, i32 nColumns);

struct PixelBox {
    i32 x, y, nWidth, nHeight;
};
// The pixels that show the tile.
PixelBox TileBox(const TileGrid &grid, TileAt tile, i32 w, i32 h);
// Where the lines along nPixels stand: one at each multiple of the real-valued size of a cell, through the far edge,
// whose line takes the last pixel.
std::vector<i32> TileLines(u32 nCells, i32 nPixels);

struct TileColors {
    u32 dwOn, dwOff; // 0x00BBGGRR
};
// Each pixel in the colour of its tile, the lines over them in black, nLine pixels wide. Without tiles all of it is
// off.
void PaintTiles(const TileGrid &grid, const TileColors &colors, std::span<u32> pixels, i32 w, i32 h, i32 nLine);
