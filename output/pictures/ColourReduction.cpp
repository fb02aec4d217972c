// ColourReduction.cpp -- a picture in at most 256 colours
#include "output/pictures/ColourReduction.h"

#include "output/pictures/PixelRows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace {

constexpr u32 CELL_BITS = 5; // colours are counted in cells of 8 x 8 x 8 of them
constexpr u32 CELLS = 1u << (3 * CELL_BITS);
constexpr u32 NEAREST_BITS = 6; // and looked up in cells of 4 x 4 x 4
constexpr u32 REFINEMENTS = 3;  // rounds in which colours move to the middle of what they stand for
constexpr u16 NOT_LOOKED_UP = 0xFFFF;

// How often the colours of a cell come, and their mean.
struct ColourCell {
    f32 fCount;
    f32 afMean[3]; // red, green, blue
};

// A run of cells that will get one colour.
struct ColourBox {
    size_t iBegin, iEnd;
    u32 iAxis;   // in which they differ most
    f32 fMean;   // along it
    f64 fSpread; // sum of the squares of the distances to the mean, along it
};

struct Nearest {
    std::array<i32, REDUCED_COLOURS_MAX> anRed, anGreen, anBlue;
    std::vector<u16> places; // by cell; NOT_LOOKED_UP until the first pixel of the cell comes
};

u32 ColourOf(const u8 *pBgra)
{
    return static_cast<u32>(pBgra[2]) << 16 | static_cast<u32>(pBgra[1]) << 8 | pBgra[0];
}

// Few colours, each with its place: a small hash table.
struct FewColours {
    static constexpr u32 SLOTS = 1024;
    std::array<u32, SLOTS> adwColour;
    std::array<u16, SLOTS> awPlace; // NOT_LOOKED_UP: the slot is free
    u32 nColours;
};

// The place of the colour, a new one if there is room; else NOT_LOOKED_UP.
u16 PlaceAmongFew(FewColours *pFew, u32 dwColour)
{
    u32 i = (dwColour * 0x9E3779B1u) >> 22;
    for (; pFew->awPlace[i] != NOT_LOOKED_UP; i = (i + 1) % FewColours::SLOTS)
        if (pFew->adwColour[i] == dwColour)
            return pFew->awPlace[i];
    if (pFew->nColours == REDUCED_COLOURS_MAX)
        return NOT_LOOKED_UP;
    pFew->adwColour[i] = dwColour;
    pFew->awPlace[i] = static_cast<u16>(pFew->nColours++);
    return pFew->awPlace[i];
}

bool KeepFewColours(ReducedPicture *pReduced, const HostBitmap *hbm)
{
    FewColours few = {};
    few.awPlace.fill(NOT_LOOKED_UP);
    u8 *pTo = pReduced->indexes.data();
    for (i32 y = hbm->nHeight - 1; y >= 0; y--) {
        const u8 *pRow = BitmapRow(hbm, y);
        for (i32 x = 0; x < hbm->nWidth; x++, pRow += 4) {
            const u16 wPlace = PlaceAmongFew(&few, ColourOf(pRow));
            if (wPlace == NOT_LOOKED_UP)
                return false;
            *pTo++ = static_cast<u8>(wPlace);
        }
    }
    pReduced->nColours = few.nColours;
    for (u32 i = 0; i < FewColours::SLOTS; i++)
        if (few.awPlace[i] != NOT_LOOKED_UP)
            for (u32 c = 0; c < 3; c++)
                pReduced->abRgb[few.awPlace[i] * 3u + c] = static_cast<u8>(few.adwColour[i] >> (16 - 8 * c));
    return true;
}

struct CellSums {
    u64 nCount, anSum[3];
};

std::vector<ColourCell> CountColours(const HostBitmap *hbm)
{
    std::vector<CellSums> sums(CELLS);
    for (i32 y = 0; y < hbm->nHeight; y++) {
        const u8 *p = BitmapRow(hbm, y);
        for (i32 x = 0; x < hbm->nWidth; x++, p += 4) {
            CellSums &cell = sums[static_cast<u32>(p[2] >> 3) << 10 | static_cast<u32>(p[1] >> 3) << 5 | p[0] >> 3];
            cell.nCount++;
            cell.anSum[0] += p[2];
            cell.anSum[1] += p[1];
            cell.anSum[2] += p[0];
        }
    }
    std::vector<ColourCell> cells;
    for (const CellSums &sum : sums) {
        const f32 fCount = static_cast<f32>(sum.nCount);
        if (sum.nCount)
            cells.push_back({fCount,
                             {static_cast<f32>(sum.anSum[0]) / fCount, static_cast<f32>(sum.anSum[1]) / fCount,
                              static_cast<f32>(sum.anSum[2]) / fCount}});
    }
    return cells;
}

// Finds the axis along which the cells of the box differ most.
ColourBox MeasureBox(const std::vector<ColourCell> &cells, size_t iBegin, size_t iEnd)
{
    f64 fCount = 0, afSum[3] = {}, afSquares[3] = {};
    for (size_t i = iBegin; i < iEnd; i++) {
        fCount += cells[i].fCount;
        for (u32 c = 0; c < 3; c++) {
            const f64 fWeighted = static_cast<f64>(cells[i].fCount) * cells[i].afMean[c];
            afSum[c] += fWeighted;
            afSquares[c] += fWeighted * cells[i].afMean[c];
        }
    }
    ColourBox box = {iBegin, iEnd, 0, 0, -1};
    for (u32 c = 0; c < 3; c++) {
        const f64 fSpread = iEnd - iBegin > 1 ? afSquares[c] - afSum[c] * afSum[c] / fCount : 0;
        if (fSpread > box.fSpread)
            box = {iBegin, iEnd, c, static_cast<f32>(afSum[c] / fCount), fSpread};
    }
    return box;
}

// Cuts the box with the greatest spread at its mean, over and over: a median cut that follows the error.
std::vector<ColourBox> CutBoxes(std::vector<ColourCell> *pCells)
{
    std::vector<ColourBox> boxes = {MeasureBox(*pCells, 0, pCells->size())};
    while (boxes.size() < REDUCED_COLOURS_MAX) {
        const auto widest = std::max_element(boxes.begin(), boxes.end(),
                                             [](const auto &a, const auto &b) { return a.fSpread < b.fSpread; });
        const ColourBox box = *widest;
        const auto begin = pCells->begin() + static_cast<std::ptrdiff_t>(box.iBegin);
        const auto end = pCells->begin() + static_cast<std::ptrdiff_t>(box.iEnd);
        const auto middle =
            std::partition(begin, end, [&](const ColourCell &cell) { return cell.afMean[box.iAxis] < box.fMean; });
        if (middle == begin || middle == end)
            break; // what is left differs by no more than rounding
        const size_t iMiddle = static_cast<size_t>(middle - pCells->begin());
        *widest = MeasureBox(*pCells, box.iBegin, iMiddle);
        boxes.push_back(MeasureBox(*pCells, iMiddle, box.iEnd));
    }
    return boxes;
}

void PlaceColours(Nearest *pNearest, const ReducedPicture &reduced)
{
    // Places beyond the last colour lie too far away to be the nearest.
    pNearest->anRed.fill(1000);
    pNearest->anGreen.fill(1000);
    pNearest->anBlue.fill(1000);
    for (u32 i = 0; i < reduced.nColours; i++) {
        pNearest->anRed[i] = reduced.abRgb[i * 3];
        pNearest->anGreen[i] = reduced.abRgb[i * 3 + 1];
        pNearest->anBlue[i] = reduced.abRgb[i * 3 + 2];
    }
}

// Distance and place in one number, so that the loop has no branches.
u32 FindNearest(const Nearest &nearest, i32 nRed, i32 nGreen, i32 nBlue)
{
    i32 nBest = INT32_MAX;
    for (i32 i = 0; i < static_cast<i32>(REDUCED_COLOURS_MAX); i++) {
        const size_t k = static_cast<size_t>(i);
        const i32 r = nearest.anRed[k] - nRed, g = nearest.anGreen[k] - nGreen, b = nearest.anBlue[k] - nBlue;
        nBest = std::min(nBest, (r * r + g * g + b * b) * 256 + i);
    }
    return static_cast<u32>(nBest) % 256;
}

struct ColourMean {
    f64 fCount, afSum[3];
};

void SetColours(ReducedPicture *pReduced, const std::vector<ColourMean> &means)
{
    for (u32 i = 0; i < pReduced->nColours; i++)
        for (u32 c = 0; c < 3 && means[i].fCount > 0; c++)
            pReduced->abRgb[i * 3 + c] = static_cast<u8>(std::lround(means[i].afSum[c] / means[i].fCount));
}

void AddCell(ColourMean *pMean, const ColourCell &cell)
{
    pMean->fCount += cell.fCount;
    for (u32 c = 0; c < 3; c++)
        pMean->afSum[c] += static_cast<f64>(cell.fCount) * cell.afMean[c];
}

void ChooseColours(ReducedPicture *pReduced, Nearest *pNearest, const HostBitmap *hbm)
{
    std::vector<ColourCell> cells = CountColours(hbm);
    const std::vector<ColourBox> boxes = CutBoxes(&cells);
    pReduced->nColours = static_cast<u32>(boxes.size());
    std::vector<ColourMean> means(REDUCED_COLOURS_MAX);
    for (size_t i = 0; i < boxes.size(); i++)
        for (size_t k = boxes[i].iBegin; k < boxes[i].iEnd; k++)
            AddCell(&means[i], cells[k]);
    SetColours(pReduced, means);
    for (u32 i = 0; i < REFINEMENTS; i++) {
        PlaceColours(pNearest, *pReduced);
        means.assign(REDUCED_COLOURS_MAX, {});
        for (const ColourCell &cell : cells)
            AddCell(&means[FindNearest(*pNearest, static_cast<i32>(std::lround(cell.afMean[0])),
                                       static_cast<i32>(std::lround(cell.afMean[1])),
                                       static_cast<i32>(std::lround(cell.afMean[2])))],
                    cell);
        SetColours(pReduced, means);
    }
    PlaceColours(pNearest, *pReduced);
    pNearest->places.assign(1u << (3 * NEAREST_BITS), NOT_LOOKED_UP);
}

u8 NearestOf(Nearest *pNearest, const i32 (&anRgb)[3])
{
    constexpr u32 DROPPED = 8 - NEAREST_BITS;
    const auto cell = [&](u32 c) { return static_cast<u32>(anRgb[c]) >> DROPPED; };
    u16 &wPlace = pNearest->places[cell(0) << (2 * NEAREST_BITS) | cell(1) << NEAREST_BITS | cell(2)];
    if (wPlace == NOT_LOOKED_UP) {
        const auto middle = [&](u32 c) { return static_cast<i32>((cell(c) << DROPPED) + (1u << DROPPED) / 2); };
        wPlace = static_cast<u16>(FindNearest(*pNearest, middle(0), middle(1), middle(2)));
    }
    return static_cast<u8>(wPlace);
}

// Errors are kept sixteenfold. pnBelow has a pixel more on either side than the row.
void DitherRow(u8 *pTo, const u8 *pRow, i32 nWidth, i32 nStep, i32 *pnHere, i32 *pnBelow, const ReducedPicture &reduced,
               Nearest *pNearest)
{
    i32 anCarried[3] = {};
    for (i32 i = 0, x = nStep > 0 ? 0 : nWidth - 1; i < nWidth; i++, x += nStep) {
        const u8 *pBgra = pRow + static_cast<size_t>(x) * 4;
        i32 *pnError = pnHere + (x + 1) * 3;
        i32 *pnNext = pnBelow + (x + 1) * 3;
        i32 anRgb[3];
        for (i32 c = 0; c < 3; c++)
            anRgb[c] = std::clamp(pBgra[2 - c] + ((pnError[c] + anCarried[c] + 8) >> 4), 0, 255);
        const u8 byPlace = NearestOf(pNearest, anRgb);
        pTo[x] = byPlace;
        for (i32 c = 0; c < 3; c++) {
            const i32 nError = anRgb[c] - reduced.abRgb[byPlace * 3 + c];
            anCarried[c] = nError * 7;
            pnNext[c - nStep * 3] += nError * 3;
            pnNext[c] += nError * 5;
            pnNext[c + nStep * 3] += nError;
        }
    }
}

// Every other row runs backwards, which keeps the errors from gathering into slanting lines.
void Dither(ReducedPicture *pReduced, Nearest *pNearest, const HostBitmap *hbm)
{
    const size_t nErrors = (static_cast<size_t>(hbm->nWidth) + 2) * 3;
    std::vector<i32> here(nErrors), below(nErrors);
    for (i32 y = 0; y < hbm->nHeight; y++) {
        u8 *pTo = pReduced->indexes.data() + static_cast<size_t>(y) * static_cast<size_t>(hbm->nWidth);
        DitherRow(pTo, BitmapRow(hbm, hbm->nHeight - 1 - y), hbm->nWidth, y % 2 ? -1 : 1, here.data(), below.data(),
                  *pReduced, pNearest);
        here.swap(below);
        std::fill(below.begin(), below.end(), 0);
    }
}

} // namespace

void ReduceColours(ReducedPicture *pReduced, const HostBitmap *hbm)
{
    pReduced->indexes.resize(static_cast<size_t>(hbm->nWidth) * static_cast<size_t>(hbm->nHeight));
    if (KeepFewColours(pReduced, hbm))
        return;
    Nearest nearest;
    ChooseColours(pReduced, &nearest, hbm);
    Dither(pReduced, &nearest, hbm);
}
