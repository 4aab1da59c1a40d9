// What the session that the program runs in can do for it.
#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <vector>

namespace ovrin {

// No text names a person, a window or a file.
struct Capability {
    std::string name;        // what it is for: "capture", "tray"
    std::string title = {};  // the same for the user: 截图
    bool isAvailable = false;
    std::string detail = {};  // by what it is done; why it cannot be where it is missing
    std::string note = {};    // the same for the user

    bool operator==(const Capability&) const = default;
};

// Asks the session: every answer is that of a call made now. Blocks for some tenths of a second, for some seconds where
// a service does not answer. Any thread but the main one. Never throws for what is missing, and CancellationError soon
// after a stop is requested.
using InspectSession = std::function<std::vector<Capability>(std::stop_token)>;

}  // namespace ovrin
