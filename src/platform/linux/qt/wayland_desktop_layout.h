// Where the displays and the pointer are in a session whose compositor tells the toolkit of the pointer only while that
// is over one of our windows.
#pragma once

#include "base/worker_executor.h"
#include "platform/linux/qt/qt_desktop_layout.h"
#include "platform/linux/wayland/kept_wayland_connection.h"

namespace ovrin {

class WaylandDesktopLayout final : public QtDesktopLayout {
public:
    // The workers outlive the object.
    WaylandDesktopLayout(WorkerExecutor& workers, std::shared_ptr<KeptWaylandConnection> connection)
        : workers_(workers), connection_(std::move(connection)) {}

    // The middle of the primary display where the compositor doesn't tell.
    Task<WindowPoint> pointerLocation() override;

private:
    WorkerExecutor& workers_;
    std::shared_ptr<KeptWaylandConnection> connection_;
};

}  // namespace ovrin
