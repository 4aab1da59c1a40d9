// Where the displays and the pointer are, as the window toolkit sees them.
#pragma once

#include "platform/desktop_layout.h"

namespace ovrin {

class QtDesktopLayout : public DesktopLayout {
public:
    std::vector<DesktopScreen> screens() override;
    Task<WindowPoint> pointerLocation() override;
};

}  // namespace ovrin
