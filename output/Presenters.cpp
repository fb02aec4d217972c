// Presenters.cpp -- where finished frames go
#include "output/Presenters.h"

#include "output/FrameStats.h"
#include "platform/Listeners.h"

namespace {

Listeners<u32(const HostBitmap *)> Presenters;

} // namespace

void AddPresenter(PresenterFn pfn, void *pvContext)
{
    Presenters.Add(pfn, pvContext);
}

void RemovePresenter(PresenterFn pfn, void *pvContext)
{
    Presenters.Remove(pfn, pvContext);
}

void PresentFrame(const HostBitmap *hbm)
{
    if (hbm && Presenters.Tell(hbm))
        CountShownFrame();
}
