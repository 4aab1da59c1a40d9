// Pictures of the screen from KWin, the compositor of KDE Plasma, which speaks no protocol for them but answers on the
// session bus.
#pragma once

#include "platform/linux/wayland/compositor_screen_capture.h"

namespace ovrin {

// KWin answers the programs whose installed desktop entry names the interface. Those it turns away hear of it when they
// ask for a picture.
class KWinScreenCapture final : public CompositorScreenCapture {
public:
    // Whether KWin is on the session bus. Blocks for two seconds where the bus doesn't answer.
    static bool isOffered();

    explicit KWinScreenCapture(WorkerExecutor& workers);
};

}  // namespace ovrin
