// Presenters.cpp -- where finished frames go
#include "output/Presenters.h"

#include "output/FrameStats.h"

namespace {

struct Presenter {
    PresenterFn pfn;
    void *pvContext;
};

Presenter asPresenter[PRESENTERS_MAX];
u32 nPresenters = 0;

} // namespace

u32 AddPresenter(PresenterFn pfn, void *pvContext)
{
    if (nPresenters >= PRESENTERS_MAX)
        return 0;
    asPresenter[nPresenters++] = {pfn, pvContext};
    return 1;
}

void RemovePresenter(PresenterFn pfn, void *pvContext)
{
    u32 nKept = 0;
    for (u32 i = 0; i < nPresenters; i++)
        if (asPresenter[i].pfn != pfn || asPresenter[i].pvContext != pvContext)
            asPresenter[nKept++] = asPresenter[i];
    nPresenters = nKept;
}

void PresentFrame(const HostBitmap *hbm)
{
    if (!hbm)
        return;
    u32 bShown = 0;
    const u32 nBefore = nPresenters;
    for (u32 i = 0; i < nPresenters && i < nBefore; i++)
        bShown |= asPresenter[i].pfn(hbm, asPresenter[i].pvContext);
    if (bShown)
        CountShownFrame();
}
