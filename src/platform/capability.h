// What the session that the program runs in can do for it.
#pragma once

#include <string>

namespace ovrin {

struct Capability {
    std::string name;  // what it is for: "capture", "tray"
    bool isAvailable = false;
    std::string detail;  // by what it is done; why it cannot be where it is missing. Names no person, window or file.
};

}  // namespace ovrin
