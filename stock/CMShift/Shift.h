// Shift.h -- the instance of the colour interpolator and what its files do for each other
#ifndef VORTICADE_CMSHIFT_SHIFT_H
#define VORTICADE_CMSHIFT_SHIFT_H

#include "stock/common/PaletteMix.h"
#include "stock/common/StockControls.h"

enum { EASE_SMOOTH = 0, EASE_EVEN = 1, EASE_SLOW_START = 2, EASE_SLOW_END = 3, EASE_COUNT = 4 };

// Which colours go first in a transition.
enum { ORDER_TOGETHER = 0, ORDER_DARK = 1, ORDER_BRIGHT = 2, ORDER_SWEEP = 3, ORDER_SCATTER = 4, ORDER_COUNT = 5 };

struct ShiftControls {
    ControlRecord *pTransitionTime; // seconds
    ControlRecord *pHoldTime;       // seconds
    ControlRecord *pEase;           // EASE_*
    ControlRecord *pOrder;          // ORDER_*
    ControlRecord *pCycleSpeed;     // loops a minute
    ControlRecord *pCycleBack;
    ControlRecord *pBrightness;
    ControlRecord *pContrast;
    ControlRecord *pSaturation;
    ControlRecord *pSoften;
    ItemSelectRow aEaseRows[EASE_COUNT];
    ItemSelectRow aOrderRows[ORDER_COUNT];
};

// A palette of the block in Oklab, with its hues, kept as long as the bytes stay the same.
struct KeptPalette {
    uint64_t qwChecksum;
    int32_t nColors; // 0: nothing kept
    PaletteColor aColor[PALETTE_COLORS_MAX];
};

// Where the interpolator stands between two palettes.
struct Pace {
    bool bMoving;
    bool bKnowsSecond;     // qwSecondSeen holds
    bool bStrangerSeen;    // a palette came without an offer: somebody else makes them
    uint16_t nTaken;       // offers used so far
    double fProgress;      // of the transition, 0 to 1
    double fRestedMs;      // since the last one, divided by the time scale
    uint64_t qwSecondSeen; // checksum of the second palette when it was last looked at
    int32_t nStepWritten;  // what this module left in the block
    int32_t nStepsWritten;
    uint32_t nOwnPalette; // the one of its own shown last
};

struct Shift {
    ShiftControls ctl;
    CodeTables codes;
    StockClock clock;
    StockRandom random;
    Pace pace;
    uint64_t qwDrawTick; // of the last ModuleDrawFrame
    uint64_t qwResolveTick;
    bool bDrawn;
    bool bResolved;
    uint64_t qwScatterSeed; // of the transition
    float fOffset;          // of the cycle, in loops
    float fVelocity;        // loops a millisecond
    KeptPalette first;
    KeptPalette second;
    Lab aColor[PALETTE_COLORS_MAX]; // the table in the making
    Lab aScratch[PALETTE_COLORS_MAX];
};

// Takes up what the plane's block holds; before the generators of the plane come up. [main-thread]
void BeginPace(Pace *pPace, PaletteInfo *pInfo);

// Moves on by some milliseconds: rests, asks for palettes, starts and ends transitions. Returns the number of
// colours, at least 1.
int32_t AdvancePace(Shift *pShift, PlaneInfo *ppi, uint32_t nElapsedMs);

// Writes palette number iPalette of the module's own into the second palette.
void WriteOwnPalette(PaletteInfo *pInfo, const CodeTables *pTables, uint32_t iPalette, int32_t nColors);
extern const uint32_t nOwnPalettes;

// Fills lpColorTable and nColors.
void FillColorTable(Shift *pShift, PlaneInfo *ppi, int32_t nColors, uint32_t nElapsedMs);

// Writes the colour of every index of pSource into pTarget. Any index is good: it counts round the palette.
void ResolveIndices(const uint32_t *pTable, int32_t nColors, const HostBitmap *pSource, HostBitmap *pTarget);

// A number that tells one palette of the block from another.
uint64_t ChecksumOfPalette(const uint8_t *pRed, const uint8_t *pGreen, const uint8_t *pBlue);

#endif
