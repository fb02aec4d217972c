// StockEntryPoints.h -- the entry points of a module, around the few functions that make it what it is
//
// A module describes itself in ModuleGetDescription, keeps its state in a record and gives functions for it:
//
//   void AddControls(Record *, const ControlMaker &)     asks for its controls and keeps their addresses
//   void Prepare(Record *)                               only if it has any: at every bring-up, before Start
//   void Start(Record *, PlaneInfo *)                    at every bring-up and reset: seed, zero the clock
//   uint32_t DrawFrame(Record *, PlaneInfo *)            one frame; MODULEDRAW_RESET asks for a reset
//   void Release(Record *)                               only if it has any: frees what depends on the size
//
// and ends with STOCK_ENTRY_POINTS(Record). The record begins zeroed; Release is also called before it goes. Start
// may find what an earlier Start left. None of them is called without a record. StockModule.h (what draws) and
// ColorEffect.h put an open canvas and fresh colours around the frame.
#ifndef VORTICADE_STOCK_ENTRY_POINTS_H
#define VORTICADE_STOCK_ENTRY_POINTS_H

#include "StockControls.h"

#include <new>

template <class Record> inline void BuildRecord(void **ppvContext, const ControlMaker &maker)
{
    Record *pRecord = new (std::nothrow) Record();
    *ppvContext = pRecord;
    if (pRecord)
        AddControls(pRecord, maker);
}

template <class Record> inline void PrepareRecord(Record *pRecord)
{
    if constexpr (requires { Prepare(pRecord); })
        if (pRecord)
            Prepare(pRecord);
}

template <class Record> inline void ReleaseRecord(Record *pRecord)
{
    if constexpr (requires { Release(pRecord); })
        if (pRecord)
            Release(pRecord);
}

#define STOCK_ENTRY_POINTS(Record)                                                                                     \
    MODULE_EXPORT void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn pfnAllocControl,     \
                                                   int32_t *pnControls)                                                \
    {                                                                                                                  \
        BuildRecord<Record>(ppvContext, {pfnAllocControl, pnControls});                                                \
    }                                                                                                                  \
    MODULE_EXPORT void ModulePreInitialize(void *pvContext, PlaneInfo *)                                               \
    {                                                                                                                  \
        PrepareRecord((Record *)pvContext);                                                                            \
    }                                                                                                                  \
    MODULE_EXPORT void ModuleInitialize(void *pvContext, PlaneInfo *ppi)                                               \
    {                                                                                                                  \
        if (pvContext)                                                                                                 \
            Start((Record *)pvContext, ppi);                                                                           \
    }                                                                                                                  \
    MODULE_EXPORT uint32_t ModuleDrawFrame(void *pvContext, PlaneInfo *ppi)                                            \
    {                                                                                                                  \
        return pvContext ? DrawFrame((Record *)pvContext, ppi) : 0;                                                    \
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
