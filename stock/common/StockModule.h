// StockModule.h -- a module that draws: the entry points with an open canvas around the frame
//
// It gives AddControls, Start and, if it has any, Prepare and Release as StockEntryPoints.h says, and
//
//   uint32_t Draw(Record *, PlaneInfo *, const Canvas &)      one frame; MODULEDRAW_RESET asks for a reset
//
// and ends with STOCK_DRAWING_MODULE(Record). Draw may find another size than Start did (a plane that was paused
// during a resize has no new bring-up), and is not called where there is nothing to draw on.
#ifndef VORTICADE_STOCK_MODULE_H
#define VORTICADE_STOCK_MODULE_H

#include "StockDrawing.h"
#include "StockEntryPoints.h"

template <class Record> inline uint32_t DrawFrame(Record *pRecord, PlaneInfo *ppi)
{
    Canvas canvas;
    return OpenCanvas(&canvas, ppi) ? Draw(pRecord, ppi, canvas) : 0;
}

#define STOCK_DRAWING_MODULE(Record) STOCK_ENTRY_POINTS(Record)

#endif
