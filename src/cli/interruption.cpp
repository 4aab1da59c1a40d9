#include "cli/interruption.h"

#include <pthread.h>
#include <unistd.h>

namespace ovrin::cli {

namespace {

// Ends the listener; not one that anybody else sends.
constexpr int wakeSignal = SIGUSR1;

sigset_t listenedSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, wakeSignal}) sigaddset(&signals, signal);
    return signals;
}

}  // namespace

Interruption::Interruption() {
    const sigset_t signals = listenedSignals();
    pthread_sigmask(SIG_BLOCK, &signals, &previous_);
    listener_ = std::thread([this, signals] {
        int signal = 0;
        while (sigwait(&signals, &signal) == 0 && signal != wakeSignal) {
            const int status = 128 + signal;
            if (exitStatus_.exchange(status) != 0) _exit(status);
            stop_.request_stop();
        }
    });
}

Interruption::~Interruption() {
    pthread_kill(listener_.native_handle(), wakeSignal);
    listener_.join();
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
}

}  // namespace ovrin::cli
