// FramePace_qt.cpp -- does at most once a frame what is asked for a thousand times a second
#include "toolkit/FramePace_qt.h"

#include <QTimerEvent>

#include <utility>

namespace {

constexpr int FRAME_MS = 16;

} // namespace

FramePace::FramePace(std::function<void()> pfn) : pfnDo(std::move(pfn))
{
}

void FramePace::Ask()
{
    bAsked = true;
    if (!Timer.isActive())
        Finish();
}

void FramePace::Finish()
{
    if (!std::exchange(bAsked, false))
        return;
    Timer.start(FRAME_MS, Qt::PreciseTimer, this);
    pfnDo();
}

void FramePace::timerEvent(QTimerEvent *pEvent)
{
    if (pEvent->timerId() != Timer.timerId())
        return;
    Timer.stop();
    Finish();
}
