// A desktop as the test lays it out.
#pragma once

#include <vector>

#include "fakes/deferred.h"
#include "platform/desktop_layout.h"

namespace ovrin {

class FakeDesktopLayout final : public DesktopLayout {
public:
    std::vector<DesktopScreen> listed{{.frame = {0, 0, 1920, 1080}, .visibleFrame = {0, 40, 1920, 1040}}};
    WindowPoint pointer{100, 900};
    bool isSlow = false;  // the pointer's place is told by `place`
    Deferred<WindowPoint> place;

    std::vector<DesktopScreen> screens() override { return listed; }
    Task<WindowPoint> pointerLocation() override {
        if (!isSlow) co_return pointer;
        const WindowPoint told = co_await place.result();
        co_return told;
    }
};

}  // namespace ovrin
