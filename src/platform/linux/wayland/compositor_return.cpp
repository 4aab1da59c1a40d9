#include "platform/linux/wayland/compositor_return.h"

#include <cstdlib>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>

#include <unistd.h>

#include "base/error.h"
#include "platform/linux/desktop/detached_program.h"
#include "platform/linux/desktop/own_executable.h"
#include "platform/linux/wayland/wayland_connection.h"

namespace ovrin {

namespace {

// Seconds with a space between them.
constexpr const char* endsVariable = "OVRIN_COMPOSITOR_ENDS";

constexpr std::chrono::seconds remembered{60};
constexpr std::size_t mostEnds = 3;              // within that time
constexpr std::chrono::milliseconds pause{200};  // between two attempts to reach the compositor

std::chrono::seconds now() {
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace

CompositorReturn::CompositorReturn() {
    const std::optional<std::string> ends = Environment::ofProcess().value(endsVariable);
    ::unsetenv(endsVariable);
    environment_ = Environment::ofProcess();
    isAwaited_ = ends.has_value();
    std::istringstream words(ends.value_or(""));
    for (long seconds = 0; words >> seconds;) ends_.emplace_back(seconds);
}

bool CompositorReturn::wait() const {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (std::chrono::steady_clock::now() < deadline) {
        try {
            const WaylandConnection connection;
            return true;
        } catch (const Error&) {
            std::this_thread::sleep_for(pause);
        }
    }
    return false;
}

void CompositorReturn::startAnew(const char* argument) const {
    std::vector<Seconds> ends = ends_;
    std::erase_if(ends, [](Seconds end) { return now() - end > remembered; });
    if (ends.size() >= mostEnds) return;
    ends.push_back(now());

    std::string noted;
    for (const Seconds end : ends) noted += std::to_string(end.count()) + " ";
    Environment::Variables variables = environment_.variables();
    variables.insert_or_assign(endsVariable, noted);
    becomeProgram(ownExecutable(), {argument}, Environment(std::move(variables)));
}

}  // namespace ovrin
