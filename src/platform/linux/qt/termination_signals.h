// Ends the program properly when it is told to by a signal (SIGTERM, SIGINT, SIGHUP), so that nothing is lost: what it
// has put on the clipboard is handed over, what it has grabbed is given back.
#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace ovrin {

class TerminationSignals {
public:
    // After the QCoreApplication, before which it must go; one at a time. terminate is called from the event loop.
    explicit TerminationSignals(std::function<void()> terminate);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    int descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace ovrin
