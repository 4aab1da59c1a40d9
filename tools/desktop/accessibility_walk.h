// A walk through one window as somebody makes it who hears it and has no pointer: what that person would stumble over.
// One thread.
#pragma once

#include <string>
#include <vector>

#include "desktop/screen_reader.h"
#include "desktop/test_user.h"

namespace ovrin {

class AccessibilityWalk {
public:
    // name: what the window is called on the accessibility bus. It has to have the keyboard, which goes once through
    // it. Faults are, each in one sentence: what takes the keyboard without a name, under another one's name, or
    // without a role of its own, as the window itself; a switch that does not say that it was switched (each is, and
    // back again); segments of which not exactly one says that it is chosen; what Tab does not reach; and an order of
    // Tab that is not the one in which the window is read: from the top down and in a row from the left, container by
    // container.
    static std::vector<std::string> faults(const ScreenReader& reader, const TestUser& user, const std::string& program,
                                           const std::string& name);
};

}  // namespace ovrin
