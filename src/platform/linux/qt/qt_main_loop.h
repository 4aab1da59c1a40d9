// The event loop of the windows: work posted here runs in between the window system's events.
#pragma once

#include <memory>

#include "base/event_loop.h"

namespace ovrin {

class QtMainLoop final : public EventLoop {
public:
    // Make it on the thread of the QCoreApplication, after that; it must go before the application does.
    QtMainLoop();
    ~QtMainLoop() override;

    void post(Work work) override;
    TimerId postAfter(Duration delay, Work work) override;
    void cancelTimer(TimerId timer) override;
    TimePoint now() const override;
    bool isCurrent() const override;

    // Drops what has been posted and not run yet, timers not among it. On its own thread.
    void discardPosted();

private:
    class Receiver;
    std::unique_ptr<Receiver> receiver_;
};

}  // namespace ovrin
