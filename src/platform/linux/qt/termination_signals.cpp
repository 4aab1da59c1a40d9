#include "platform/linux/qt/termination_signals.h"

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace ovrin {

namespace {

constexpr std::array signals{SIGTERM, SIGINT, SIGHUP};

// A handler can be told nothing else.
std::atomic<int> wakeDescriptor = -1;

extern "C" void wakeMainLoop(int /*signal*/) {
    const std::uint64_t one = 1;
    static_cast<void>(::write(wakeDescriptor.load(), &one, sizeof one));
}

}  // namespace

// Handlers and not a mask of blocked signals: that would be inherited by the programs that are started to open links.
TerminationSignals::TerminationSignals(std::function<void()> terminate)
    : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      notifier_(std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this, terminate = std::move(terminate)] {
                         std::uint64_t count = 0;
                         static_cast<void>(::read(descriptor_, &count, sizeof count));
                         terminate();
                     });
    wakeDescriptor = descriptor_;
    struct sigaction action {};
    action.sa_handler = wakeMainLoop;
    action.sa_flags = SA_RESTART;
    for (const int signal : signals) ::sigaction(signal, &action, nullptr);
}

// From here on a signal ends a program that hangs at its end.
TerminationSignals::~TerminationSignals() {
    for (const int signal : signals) std::signal(signal, SIG_DFL);
    notifier_.reset();
    ::close(descriptor_);
}

}  // namespace ovrin
