// Pictures of the screen from compositors with the screencopy protocol.
#pragma once

#include "platform/linux/wayland/compositor_screen_capture.h"

namespace ovrin {

class WaylandConnection;

class WaylandScreenCapture final : public CompositorScreenCapture {
public:
    static bool isOfferedBy(const WaylandConnection& connection);

    explicit WaylandScreenCapture(WorkerExecutor& workers, std::shared_ptr<KeptWaylandConnection> connection =
                                                               std::make_shared<KeptWaylandConnection>());
};

}  // namespace ovrin
