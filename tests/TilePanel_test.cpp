// TilePanel_test.cpp -- the grid of a tile control: patterns, pixels, bounds
#include "controls/panels/TilePatterns.h"

#include "tests/TreeFixture.h"
#include "toolkit/Meters.h"

namespace {

constexpr u32 MASK_TILES = CONTROL_TILES_MAX * CONTROL_TILES_MAX;

struct Tiles {
    Tiles(u32 nColumns, u32 nRows) : Mask(MASK_TILES, 1)
    {
        Record.Base.dwType = CONTROLTYPE_TILE;
        Record.Tile = {nColumns, nRows, CONTROL_TILES_MAX, CONTROL_TILES_MAX, Mask.data()};
    }
    TileGrid Grid() const
    {
        return TilesOf(&Record);
    }

    std::vector<u32> Mask;
    ControlRecord Record = {};
};

// What the words of each button say, the long way.
u32 Expected(std::u16string_view text, u32 r, u32 c, u32 dwOld)
{
    if (text == u"All On" || text == u"All Off")
        return text == u"All On";
    if (text == u"Invert")
        return dwOld == 0;
    const u32 n = text == u"Checker" ? r + c : text == u"Rows" ? r : c;
    return n & 1;
}

TEST(TilePanelTest, EachButtonWritesItsPatternOverTheWholeGrid)
{
    Tiles tiles(5, 3);
    for (u32 i = 0; i < MASK_TILES; i++)
        tiles.Mask[i] = i % 4 == 0 ? 0 : i; // what is not 0 is on
    std::u16string texts;
    for (const TileButton &button : TileButtons()) {
        texts.append(button.pszText).append(u"|");
        const auto writes = PatternWrites(WeightPlace(7), tiles.Grid(), button);
        ASSERT_EQ(15u, writes.size());
        for (u32 i = 0; i < 15; i++) {
            EXPECT_EQ(WeightPlace(7), writes[i].place);
            EXPECT_EQ(EditField::Tile, writes[i].eField);
            EXPECT_EQ(i, writes[i].iElement);
            EXPECT_EQ(Expected(button.pszText, i / 5, i % 5, tiles.Mask[i]), writes[i].nValue)
                << ToUtf8(button.pszText) << i;
        }
    }
    EXPECT_EQ(u"All On|All Off|Checker|Rows|Columns|Invert|", texts);
}

TEST(TilePanelTest, AGridNeverReachesBeyondTheMask)
{
    for (u32 nColumns : {0u, 1u, 2u, 31u, 32u, 33u, 1000u, 1024u, 1025u, 4096u, ALL_ONES})
        for (u32 nRows : {0u, 1u, 2u, 31u, 32u, 33u, 1024u, 1025u, 4096u, ALL_ONES}) {
            const Tiles tiles(nColumns, nRows);
            const TileGrid grid = tiles.Grid();
            EXPECT_LE(u64{grid.nColumns} * grid.nRows, MASK_TILES);
            if (u64{nColumns} * nRows <= MASK_TILES) {
                EXPECT_EQ(u64{nColumns} * nRows, u64{grid.nColumns} * grid.nRows);
            }
            for (const TileButton &button : TileButtons()) {
                const auto writes = PatternWrites({}, grid, button);
                EXPECT_EQ(u64{grid.nColumns} * grid.nRows, writes.size());
                EXPECT_LE(writes.size(), FIELD_WRITES_MAX);
            }
            std::vector<u32> pixels(40 * 40);
            PaintTiles(grid, {1, 2}, pixels, 40, 40, 1);
            EXPECT_FALSE(TileIsOn(grid, {nRows, 0}));
            EXPECT_FALSE(TileIsOn(grid, {0, nColumns}));
            EXPECT_TRUE(TurnWrites({}, grid, {grid.nRows, 0}).empty());
        }
    ControlRecord other = Tiles(4, 4).Record;
    other.Tile.pTileMask = nullptr;
    EXPECT_EQ(0u, TilesOf(&other).nRows);
    other.Base.dwType = CONTROLTYPE_FLOAT;
    EXPECT_EQ(0u, TilesOf(&other).nRows);
    EXPECT_EQ(0u, TilesOf(nullptr).nRows);
}

TEST(TilePanelTest, EachPixelBelongsToTheTileThatItsQuotientNames)
{
    for (auto [nColumns, nRows] : {std::pair{32u, 32u}, {1u, 1u}, {7u, 3u}, {32u, 1u}})
        for (auto [w, h] : {std::pair{320, 320}, {1, 1}, {5, 7}, {33, 31}, {101, 640}}) {
            const Tiles tiles(nColumns, nRows);
            TileAt tile = {99, 99};
            for (i32 y = -1; y <= h; y++)
                for (i32 x = -1; x <= w; x++) {
                    const bool bInside = x >= 0 && y >= 0 && x < w && y < h;
                    ASSERT_EQ(bInside, HitTile(tiles.Grid(), x, y, w, h, &tile));
                    if (!bInside)
                        continue;
                    ASSERT_EQ((TileAt{nRows * u32(y) / u32(h), nColumns * u32(x) / u32(w)}), tile);
                    ASSERT_TRUE(TileExists(tiles.Grid(), tile));
                    const PixelBox box = TileBox(tiles.Grid(), tile, w, h);
                    ASSERT_TRUE(x >= box.x && x < box.x + box.nWidth && y >= box.y && y < box.y + box.nHeight);
                }
        }
    TileAt tile = {};
    EXPECT_TRUE(HitTile(Tiles(32, 32).Grid(), INT32_MAX - 1, INT32_MAX - 1, INT32_MAX, INT32_MAX, &tile));
    EXPECT_EQ((TileAt{31, 31}), tile);
    EXPECT_FALSE(HitTile(Tiles(0, 0).Grid(), 0, 0, 10, 10, &tile));
    EXPECT_FALSE(HitTile(Tiles(2, 2).Grid(), 0, 0, 0, 0, &tile));
}

TEST(TilePanelTest, LinesStandAtTheMultiplesOfTheRealCellSize)
{
    for (u32 nCells : {1u, 3u, 7u, 32u})
        for (i32 nPixels : {1, 5, 100, 333, 640}) {
            const auto lines = TileLines(nCells, nPixels);
            ASSERT_EQ(nCells + 1, lines.size());
            for (u32 i = 0; i < nCells; i++)
                EXPECT_EQ(static_cast<i32>(f64(nPixels) * i / nCells + 1e-9), lines[i]);
            EXPECT_EQ(nPixels - 1, lines[nCells]) << "the far edge";
        }
    EXPECT_TRUE(TileLines(0, 100).empty());
    EXPECT_TRUE(TileLines(4, 0).empty());
}

TEST(TilePanelTest, EachPixelIsALineOrHasTheColourOfItsTile)
{
    for (i32 nLine : {1, 2})
        for (auto [w, h] : {std::pair{97, 61}, {64, 64}, {3, 5}, {1, 1}}) {
            Tiles tiles(7, 5);
            for (u32 i = 0; i < MASK_TILES; i++)
                tiles.Mask[i] = i % 3;
            std::vector<u32> pixels(static_cast<size_t>(w * h));
            PaintTiles(tiles.Grid(), {0x112233, 0x445566}, pixels, w, h, nLine);
            const auto isLine = [=](i32 i, u32 nCells, i32 nPixels) {
                const auto lines = TileLines(nCells, nPixels);
                return std::any_of(lines.begin(), lines.end(), [=](i32 iLine) {
                    const i32 iFirst = std::max(std::min(iLine, nPixels - nLine), 0);
                    return i >= iFirst && i < iFirst + nLine;
                });
            };
            TileAt tile;
            for (i32 y = 0; y < h; y++)
                for (i32 x = 0; x < w; x++) {
                    ASSERT_TRUE(HitTile(tiles.Grid(), x, y, w, h, &tile));
                    const u32 dwTile = PixelOfColor(TileIsOn(tiles.Grid(), tile) ? 0x112233 : 0x445566);
                    ASSERT_EQ(isLine(x, 7, w) || isLine(y, 5, h) ? 0xFF000000 : dwTile,
                              pixels[static_cast<size_t>(y * w + x)])
                        << x << "," << y;
                }
        }
}

TEST(TilePanelTest, StepsStopAtTheEdges)
{
    const Tiles tiles(4, 3);
    EXPECT_EQ((TileAt{1, 2}), StepTile(tiles.Grid(), {1, 1}, 0, 1));
    EXPECT_EQ((TileAt{0, 1}), StepTile(tiles.Grid(), {0, 1}, -1, 0));
    EXPECT_EQ((TileAt{2, 3}), StepTile(tiles.Grid(), {2, 3}, 1, 1));
    EXPECT_EQ((TileAt{2, 3}), StepTile(tiles.Grid(), {31, 31}, 0, 0)) << "the grid has become smaller";
    EXPECT_EQ((TileAt{0, 0}), StepTile(Tiles(0, 5).Grid(), {2, 2}, 1, 1));
}

TEST(TilePanelTest, ATileTurnsOverWhateverStandsForOn)
{
    Tiles tiles(4, 4);
    tiles.Mask[6] = 77;
    tiles.Mask[7] = 0;
    const auto off = TurnWrites(WeightPlace(1), tiles.Grid(), {1, 2});
    const auto on = TurnWrites(WeightPlace(1), tiles.Grid(), {1, 3});
    ASSERT_EQ(1u, off.size());
    EXPECT_EQ(6u, off[0].iElement);
    EXPECT_EQ(0, off[0].nValue);
    ASSERT_EQ(1u, on.size());
    EXPECT_EQ(7u, on[0].iElement);
    EXPECT_EQ(1, on[0].nValue);
}

} // namespace
