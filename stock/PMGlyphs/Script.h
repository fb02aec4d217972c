// Script.h -- an invented script: its glyphs, and the places on the picture that they are written to
#ifndef VORTICADE_SCRIPT_H
#define VORTICADE_SCRIPT_H

#include "../common/StockPen.h"

#define SCRIPT_GLYPHS 36
#define GLYPH_STROKES_MOST 4
#define STROKE_KNOTS_MOST 6

struct Knot {
    float x, y; // glyph heights; the origin on the base line
};

struct Stroke {
    Knot aKnot[STROKE_KNOTS_MOST];
    int32_t nKnots;
    float fLength; // about; what the pen needs for it
};

struct Glyph {
    Stroke aStroke[GLYPH_STROKES_MOST];
    int32_t nStrokes;
    float fWidth;  // glyph heights
    float fLength; // of all strokes
};

// Invents the script: glyphs that look like those of one hand.
void InventGlyphs(Glyph (&aGlyph)[SCRIPT_GLYPHS], StockRandom *pRandom);

// A point of a stroke, fAlong 0 to 1 from its start to its end. fCurl: 0 straight from knot to knot, 1 a smooth curve.
Knot PointOfStroke(const Stroke &stroke, float fAlong, float fCurl);

enum { LAYOUT_LINES, LAYOUT_COLUMNS, LAYOUT_CIRCLES, LAYOUT_SPIRAL, LAYOUTS };

// Where a hand has got to: along its line (units) or its circle (turns), and on which one.
struct Place {
    float fAlong, fLine;
};

// A glyph's base line on the picture.
struct Spot {
    float x, y;
    float fAngle; // turns
};

// Where the glyph stands that begins at the place.
Spot SpotOfPlace(const View &view, uint32_t dwLayout, const Place &place);

// Moves on by fWidth, to the next line where this one ends. fHeight: of the glyphs, all in units.
void AdvancePlace(const View &view, uint32_t dwLayout, Place *pPlace, float fWidth, float fHeight);

// A fresh place for a hand, fShare 0 to 1: where on the picture.
Place FirstPlace(const View &view, uint32_t dwLayout, float fShare);

#endif
