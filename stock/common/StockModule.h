// StockModule.h -- the entry points of a drawing module, around the few functions that make it what it is
//
// A module describes itself in ModuleGetDescription, keeps its state in a record and gives functions for it:
//
//   void AddControls(Record *, const ControlMaker &)          asks for its controls and keeps their addresses
//   void Start(Record *, PlaneInfo *)                         at every bring-up and reset: seed, zero the clock
//   uint32_t Draw(Record *, PlaneInfo *, const Canvas &)      one frame; MODULEDRAW_RESET asks for a reset
//   void Release(Record *)                                    only if it has any: frees what depends on the size
//
// and ends with STOCK_DRAWING_MODULE(Record). The record begins zeroed; Release is also called before it goes.
// Start may find what an earlier Start left. Draw may find another size than Start did (a plane that was paused
// during a resize has no new bring-up), and is not called where there is nothing to draw on.
#ifndef VORTICADE_STOCK_MODULE_H
#define VORTICADE_STOCK_MODULE_H

#include "StockDrawing.h"

#include <new>

template <class Record> inline void ReleaseRecord(Record *pRecord)
{
    if constexpr (requires { Release(pRecord); })
        if (pRecord)
            Release(pRecord);
}

template <class Record> inline uint32_t DrawRecord(Record *pRecord, PlaneInfo *ppi)
{
    Canvas canvas;
    return pRecord && OpenCanvas(&canvas, ppi) ? Draw(pRecord, ppi, canvas) : 0;
}

template <class Record> inline void BuildRecord(void **ppvContext, const ControlMaker &maker)
{
    Record *pRecord = new (std::nothrow) Record();
    *ppvContext = pRecord;
    if (pRecord)
        AddControls(pRecord, maker);
}

#define STOCK_DRAWING_MODULE(Record)                                                                                   \
    MODULE_EXPORT void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn pfnAllocControl,     \
                                                   int32_t *pnControls)                                                \
    {                                                                                                                  \
        BuildRecord<Record>(ppvContext, {pfnAllocControl, pnControls});                                                \
    }                                                                                                                  \
    MODULE_EXPORT void ModulePreInitialize(void *, PlaneInfo *)                                                        \
    {                                                                                                                  \
    }                                                                                                                  \
    MODULE_EXPORT void ModuleInitialize(void *pvContext, PlaneInfo *ppi)                                               \
    {                                                                                                                  \
        if (pvContext)                                                                                                 \
            Start((Record *)pvContext, ppi);                                                                           \
    }                                                                                                                  \
    MODULE_EXPORT uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi)                                            \
    {                                                                                                                  \
        return DrawRecord((Record *)pvContext, ppi);                                                                   \
    }                                                                                                                  \
    MODULE_EXPORT void ModuleResolveIndexedPlane(void *, PlaneInfo *, HostBitmap *)                                    \
    {                                                                                                                  \
    }                                                                                                                  \
    MODULE_EXPORT void ModuleCleanUp(void *pvContext)                                                                  \
    {                                                                                                                  \
        ReleaseRecord((Record *)pvContext);                                                                            \
    }                                                                                                                  \
    MODULE_EXPORT void ModuleDestroyControlStructure(void *pvContext)                                                  \
    {                                                                                                                  \
        ReleaseRecord((Record *)pvContext);                                                                            \
        delete (Record *)pvContext;                                                                                    \
    }

#endif
