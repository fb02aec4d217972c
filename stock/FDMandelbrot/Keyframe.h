// Keyframe.h -- pictures of the Mandelbrot set that are worked out bit by bit and shown magnified
#ifndef VORTICADE_KEYFRAME_H
#define VORTICADE_KEYFRAME_H

#include "../common/StockField.h"

#define KEYFRAME_BATCH 8 // points that are iterated together
#define KEYFRAME_PIXELS_MAX 2100000
#define KEYFRAME_INSIDE -1000.0f // what a point of the set itself holds

// A beautiful place: a point from which structure unfolds at every scale.
struct Place {
    double x, y;
    float fPerOctave; // more iterations for each halving of the view
};

// Of each point the root of its smooth count of iterations, or KEYFRAME_INSIDE. Zero it before its first use.
struct Keyframe {
    float *pfValue;          // bottom row first
    int32_t nWidth, nHeight; // points; nWidth is a multiple of KEYFRAME_BATCH; 0: nothing allocated
    Place place;
    float fOctave; // the view is 4 / 2^fOctave along the shorter side of the picture
    double fStep;  // from point to point
    int32_t nIterations;
    int32_t iNextBatch, nBatches; // worked out up to there
    double fEffort;               // iterations spent so far
};

void FreeKeyframe(Keyframe *pKeyframe);

// Makes room for a keyframe of a picture of this size, with fDetail points to a pixel along each side.
// False if there is no memory: then nothing is held.
bool FitKeyframe(Keyframe *pKeyframe, int32_t nWidth, int32_t nHeight, float fDetail);

// Begins anew; nothing of it is known yet.
void BeginKeyframe(Keyframe *pKeyframe, const Place &place, float fOctave);

// Goes on for about so many iterations of points.
void WorkOut(Keyframe *pKeyframe, double fEffort);

inline bool IsComplete(const Keyframe &keyframe)
{
    return keyframe.pfValue && keyframe.iNextBatch >= keyframe.nBatches;
}

// How a complete keyframe is laid over a picture, prepared once a frame.
struct KeyframeView {
    int32_t *piColumn; // point to the left of each pixel
    float *pfPast;     // how far the pixel lies past it
    float *pfRow;      // room for one row of points
    int32_t nRoomPixels, nRoomPoints;
};

void FreeView(KeyframeView *pView);

// fZoom: 1 shows all of the keyframe. False if there is no memory.
bool PrepareView(KeyframeView *pView, const Keyframe &keyframe, const Canvas &canvas, float fZoom);

struct TurnColors {
    const FieldColors *pColors;
    float fSpread;     // turns through the palette for each unit of the values
    uint32_t dwInside; // pixel of the set itself
};

// The pixels of row y of the picture.
void ShowRow(const KeyframeView &view, const Keyframe &keyframe, const Canvas &canvas, float fZoom, int32_t y,
             const TurnColors &colors, uint32_t *pPixel);

#endif
