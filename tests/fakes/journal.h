// What happened, in order: all fakes of a test write into one journal, so that the order of effects can be asserted.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace ovrin {

class Journal {
public:
    void add(std::string event) { events_.push_back(std::move(event)); }
    const std::vector<std::string>& events() const { return events_; }

    // What was written since the last call.
    std::vector<std::string> take() { return std::exchange(events_, {}); }

private:
    std::vector<std::string> events_;
};

}  // namespace ovrin
