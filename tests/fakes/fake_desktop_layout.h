// A desktop as the test lays it out.
#pragma once

#include <vector>

#include "platform/desktop_layout.h"

namespace ovrin {

class FakeDesktopLayout final : public DesktopLayout {
public:
    std::vector<DesktopScreen> listed{{.frame = {0, 0, 1920, 1080}, .visibleFrame = {0, 40, 1920, 1040}}};
    WindowPoint pointer{100, 900};

    std::vector<DesktopScreen> screens() override { return listed; }
    WindowPoint pointerLocation() override { return pointer; }
};

}  // namespace ovrin
