// PictureView.h -- a picture laid over the canvas: fitted, magnified and shifted
#ifndef VORTICADE_PICTURE_VIEW_H
#define VORTICADE_PICTURE_VIEW_H

#include "PictureFile.h"

#include "../common/StockField.h"

enum { FIT_FILL, FIT_WHOLE, FIT_STRETCH, FIT_TILE, FIT_MODES };

// Where the picture lies: pixel p of the canvas shows point (p - middle of the canvas) * fStep + start.
struct PicturePose {
    uint32_t dwFit;
    float fZoom;      // 1: as fitted
    float xPan, yPan; // -1 to 1: as far as there is something to see
};

// Per column of the canvas: the point to its left, and how far past it, 0 to 256; -1 where there is no picture.
// Zero it before its first use.
struct PictureView {
    const Picture *pPicture; // the level that is shown
    int32_t *piLeft;
    uint32_t *pnPast;
    uint32_t *pdwRow; // one row of points, the first one again behind the last
    int32_t nRoomPixels, nRoomPoints;
    float yStart, yStep;
    bool bTiled;
};

void FreePictureView(PictureView *pView);

// False if there is no memory, or no picture.
bool PreparePictureView(PictureView *pView, const PictureLevels &levels, const PicturePose &pose, const Canvas &canvas);

// The colours of row y of the canvas, black where there is no picture.
void SampleRow(const PictureView &view, const Canvas &canvas, int32_t y, uint32_t *pdwColor);

#endif
