// MainThread.cpp -- the thread that owns everything
#include "platform/MainThread.h"

#include <atomic>
#include <thread>

namespace {

std::atomic<std::thread::id> idMain; // none: not claimed yet

} // namespace

void ClaimMainThread()
{
    VD_ASSERT(OnMainThread());
}

bool OnMainThread()
{
    const std::thread::id idSelf = std::this_thread::get_id();
    std::thread::id idOwner = idMain.load(std::memory_order_relaxed);
    if (idOwner == std::thread::id() && idMain.compare_exchange_strong(idOwner, idSelf))
        return true;
    return idOwner == idSelf;
}
