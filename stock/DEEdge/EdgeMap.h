// EdgeMap.h -- where the outlines of a picture are, and their glow
#ifndef VORTICADE_EDGE_MAP_H
#define VORTICADE_EDGE_MAP_H

#include "../common/StockReduced.h"

#define EDGE_REACH_MOST 64 /* pixels between an outline and the values that it is made from */

// Zero it before its first use.
struct EdgeMap {
    uint8_t *pbLevels; // bottom row first, each with EDGE_REACH_MOST pixels that repeat its ends at either side
    uint8_t *pbCover;  // 0 to 255 for each pixel of the picture
    int32_t nWidth, nHeight;
    ReducedPicture reduced; // the cover, for the glow
};

struct EdgeLook {
    int32_t nReach;
    float fGain;          // cover for a difference of levels
    float fThreshold;     // differences up to it count nothing, 0 to 255
    uint8_t abLevel[256]; // what counts as level for a brightness
};

// False if there is no memory.
bool FitEdgeMap(EdgeMap *pMap, const Canvas &canvas);
void FreeEdgeMap(EdgeMap *pMap);

// Fills pbCover from the picture.
void MarkEdges(EdgeMap *pMap, const Canvas &canvas, const EdgeLook &look);

// Lights up what lies around the outlines. fRadius: pixels. fStrength: 0 to 4.
void AddEdgeGlow(EdgeMap *pMap, float fRadius, float fStrength, uint32_t nFrame);

#endif
