// Presenters.cpp -- where finished frames go
#include "output/Presenters.h"

#include "output/FrameStats.h"
#include "platform/Listeners.h"
#include "platform/MainThread.h"

namespace {

Listeners<u32(const HostBitmap *)> Presenters;

} // namespace

void AddPresenter(PresenterFn pfn, void *pvContext)
{
    ASSERT_MAIN_THREAD();
    Presenters.Add(pfn, pvContext);
}

void RemovePresenter(PresenterFn pfn, void *pvContext)
{
    ASSERT_MAIN_THREAD();
    Presenters.Remove(pfn, pvContext);
}

void PresentFrame(const HostBitmap *hbm)
{
    ASSERT_MAIN_THREAD();
    if (hbm && Presenters.Tell(hbm))
        CountShownFrame();
}
