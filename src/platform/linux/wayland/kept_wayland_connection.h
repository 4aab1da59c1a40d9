// A connection to the Wayland compositor that is kept from one use to the next. A new one takes 2 ms and, in KWin,
// which looks up then what the program may do, 50 ms in which it does nothing else.
#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "base/error.h"
#include "platform/linux/wayland/wayland_connection.h"

namespace ovrin {

// Any thread. While it is in use, another use gets a connection of its own; one whose use has failed is not kept.
class KeptWaylandConnection {
public:
    // Returns what the work makes of the connection, whose outputs are as they were at the last asking. Throws Error
    // when no compositor answers, and what the work throws.
    template <typename Work>
    auto use(const Work& work) {
        auto connection = take();
        return use(connection ? std::move(connection) : std::make_unique<WaylandConnection>(), work);
    }

    // The same with the outputs that are there now, and also when the compositor has started again meanwhile.
    template <typename Work>
    auto useWithOutputs(const Work& work) {
        return use(upToDate(take()), work);
    }

private:
    template <typename Work>
    auto use(std::unique_ptr<WaylandConnection> connection, const Work& work) {
        auto result = work(*connection);
        wl_display_flush(connection->display());  // what the work has taken back goes from the screen
        const std::scoped_lock lock(mutex_);
        kept_ = std::move(connection);
        return result;
    }
    static std::unique_ptr<WaylandConnection> upToDate(std::unique_ptr<WaylandConnection> connection) {
        try {
            if (connection) connection->refreshOutputs();
        } catch (const Error&) {
            if (!connection->isLost()) throw;  // a compositor that hangs would let a new connection wait as long again
            connection.reset();
        }
        return connection ? std::move(connection) : std::make_unique<WaylandConnection>();
    }
    std::unique_ptr<WaylandConnection> take() {
        const std::scoped_lock lock(mutex_);
        return std::move(kept_);
    }

    std::mutex mutex_;
    std::unique_ptr<WaylandConnection> kept_;
};

}  // namespace ovrin
