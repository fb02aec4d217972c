// PaletteProtocol.h -- how the colour modules of a plane hand palettes to each other through PaletteInfo
//
// A generator makes palettes, the interpolator moves from one to the next and fills the colour table. The
// named fields of PaletteInfo hold the two palettes of a transition and its step; the three fields for the
// modules hold the records below. A plane starts with all of it zero.
//
//   1. While nStep < nSteps a transition from the first palette to the second is under way: only the
//      interpolator touches the block. When it ends, the interpolator copies the second palette over the
//      first and sets nStep = nSteps. From then on the second palette is the generator's to write.
//   2. An interpolator that wants the next palette raises nWanted. A generator that finds nWanted different
//      from its nServed breeds, writes the second palette and its size, sets nServed = nWanted and raises
//      nOffered. It may also offer unasked, after a reset. A new nOffered starts the next transition.
//   3. A generator that comes up on a plane without a palette fills both, without an offer, so that the very
//      first frame has its colours.
//
// Each side works without the other, and next to modules that know nothing of this:
//   - The interpolator takes its PaletteDesk.dwMark and raises nBeat each frame. A generator that has seen no
//     beat for PALETTE_PATIENCE_MS fills the colour table itself and moves nStep itself; where it finds that
//     somebody else moves nStep, it only supplies second palettes, and leaves the table alone.
//   - The generator takes its PaletteOffer.dwMark. At every bring-up the interpolator clears that mark; it is
//     called before the generators of its plane. An interpolator that finds no mark uses palettes of its own.
//     With the mark there and no answer (a generator that the user has paused) it stays with what it has.
//   - A second palette that changed between two transitions without an offer counts as one. Without a mark at
//     PaletteSizes the size is PlaneInfo.nColors.
//
// Colour effects come after both and change the table alone (ColorEffect.h). PaletteGenerator.h is the generator's side.
//
// A palette is a loop: the last colour leads back to the first. Colour 0 is what an empty plane shows and is
// black, so that an empty place adds nothing where planes are blended.
#ifndef VORTICADE_PALETTE_PROTOCOL_H
#define VORTICADE_PALETTE_PROTOCOL_H

#include "module.h"

#include <cstring>

#define PALETTE_PATIENCE_MS 2000u

enum : uint32_t {
    PALETTEMARK_INTERPOLATOR = 0x31494456, // "VDI1"
    PALETTEMARK_GENERATOR = 0x31474456,    // "VDG1"
    PALETTEMARK_SIZES = 0x31534456         // "VDS1"
};

struct PaletteDesk { // in abModules0, written by the interpolator
    uint32_t dwMark;
    uint16_t nBeat;   // one more each frame
    uint16_t nWanted; // palettes asked for so far
};

struct PaletteOffer { // in abModules1, written by the generator
    uint32_t dwMark;
    uint16_t nServed;  // the nWanted that has been answered
    uint16_t nOffered; // palettes offered so far
};

struct PaletteSizes { // in abModules2, written by whoever writes a palette
    uint32_t dwMark;
    int32_t nColors1; // 0: there is no palette
    int32_t nColors2;
};

static_assert(sizeof(PaletteDesk) == sizeof(PaletteInfo::abModules0), "PaletteDesk");
static_assert(sizeof(PaletteOffer) == sizeof(PaletteInfo::abModules1), "PaletteOffer");
static_assert(sizeof(PaletteSizes) == sizeof(PaletteInfo::abModules2), "PaletteSizes");

inline int32_t LimitColors(int32_t nColors)
{
    return nColors < 0 ? 0 : nColors > PALETTE_COLORS_MAX ? PALETTE_COLORS_MAX : nColors;
}

// What a stranger left in the bytes reads as an empty record.
inline PaletteDesk ReadDesk(const PaletteInfo *pInfo)
{
    PaletteDesk desk;
    memcpy(&desk, pInfo->abModules0, sizeof desk);
    return desk.dwMark == PALETTEMARK_INTERPOLATOR ? desk : PaletteDesk{};
}

inline PaletteOffer ReadOffer(const PaletteInfo *pInfo)
{
    PaletteOffer offer;
    memcpy(&offer, pInfo->abModules1, sizeof offer);
    return offer.dwMark == PALETTEMARK_GENERATOR ? offer : PaletteOffer{};
}

inline PaletteSizes ReadSizes(const PaletteInfo *pInfo)
{
    PaletteSizes sizes;
    memcpy(&sizes, pInfo->abModules2, sizeof sizes);
    if (sizes.dwMark != PALETTEMARK_SIZES)
        return {};
    return {sizes.dwMark, LimitColors(sizes.nColors1), LimitColors(sizes.nColors2)};
}

inline void WriteDesk(PaletteInfo *pInfo, PaletteDesk desk)
{
    desk.dwMark = PALETTEMARK_INTERPOLATOR;
    memcpy(pInfo->abModules0, &desk, sizeof desk);
}

inline void WriteOffer(PaletteInfo *pInfo, PaletteOffer offer)
{
    offer.dwMark = PALETTEMARK_GENERATOR;
    memcpy(pInfo->abModules1, &offer, sizeof offer);
}

inline void WriteSizes(PaletteInfo *pInfo, int32_t nColors1, int32_t nColors2)
{
    const PaletteSizes sizes = {PALETTEMARK_SIZES, nColors1, nColors2};
    memcpy(pInfo->abModules2, &sizes, sizeof sizes);
}

inline bool TransitionUnderWay(const PaletteInfo *pInfo)
{
    return pInfo->nStep < pInfo->nSteps;
}

// The end of a transition, and the start of a plane: the second palette becomes the first as well.
inline void KeepSecondPalette(PaletteInfo *pInfo)
{
    memcpy(pInfo->abRed1, pInfo->abRed2, sizeof pInfo->abRed1);
    memcpy(pInfo->abGreen1, pInfo->abGreen2, sizeof pInfo->abGreen1);
    memcpy(pInfo->abBlue1, pInfo->abBlue2, sizeof pInfo->abBlue1);
    const int32_t nColors = ReadSizes(pInfo).nColors2;
    WriteSizes(pInfo, nColors, nColors);
}

#endif
