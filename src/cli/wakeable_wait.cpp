#include "cli/wakeable_wait.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin::cli {

WakeableWait::Event::Event() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (descriptor_ < 0) throw Error(std::generic_category().message(errno));
}

WakeableWait::Event::~Event() {
    ::close(descriptor_);
}

void WakeableWait::Event::set() const {
    ::eventfd_write(descriptor_, 1);
}

WakeableWait::WakeableWait(std::stop_token stop) : onStop_(std::move(stop), [this] { wake_.set(); }) {}

void WakeableWait::untilReadable(int descriptor) const {
    waitFor(descriptor, POLLIN);
}

bool WakeableWait::untilClosed(int descriptor) const {
    return waitFor(descriptor, 0) != 0;
}

short WakeableWait::waitFor(int descriptor, short events) const {
    std::array<pollfd, 2> watched{pollfd{.fd = descriptor, .events = events, .revents = 0},
                                  pollfd{.fd = wake_.descriptor(), .events = POLLIN, .revents = 0}};
    while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
    }
    return watched[1].revents != 0 ? short{0} : watched[0].revents;
}

}  // namespace ovrin::cli
