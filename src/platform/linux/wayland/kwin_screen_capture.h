// Pictures of the screen from KWin, the compositor of KDE Plasma, which speaks no protocol for them but answers on the
// session bus.
#pragma once

#include <atomic>
#include <memory>

#include "platform/linux/wayland/compositor_screen_capture.h"

namespace ovrin {

// KWin answers the programs whose installed desktop entry names the interface. Those it turns away hear of it when they
// ask for a picture.
class KWinScreenCapture final : public CompositorScreenCapture {
public:
    // Whether KWin is on the session bus. Blocks for two seconds where the bus doesn't answer.
    static bool isOffered();

    // Has a worker look for KWin at once.
    explicit KWinScreenCapture(WorkerExecutor& workers, std::shared_ptr<KeptWaylandConnection> connection =
                                                            std::make_shared<KeptWaylandConnection>());

    bool preflightAccess() override { return *isFound_; }
    // Looks for KWin again. Throws Error where there is none.
    Task<bool> requestAccess() override;

private:
    std::shared_ptr<std::atomic<bool>> isFound_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace ovrin
