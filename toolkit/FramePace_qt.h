// FramePace_qt.h -- does at most once a frame what is asked for a thousand times a second
#pragma once

#include <QBasicTimer>
#include <QObject>

#include <functional>

// For what a drag repaints: mice send more events than there are pictures. Lives as long as what it calls.
// [main-thread]
class FramePace : public QObject {
  public:
    explicit FramePace(std::function<void()> pfn);

    // At once, if the last time is a frame ago; else when that is so.
    void Ask();
    // What is still asked for, now.
    void Finish();

  protected:
    void timerEvent(QTimerEvent *pEvent) override;

  private:
    std::function<void()> pfnDo;
    QBasicTimer Timer;
    bool bAsked = false;
};
