// The models of a service for the menu beside a field, asked for by a button.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/event_loop.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "platform/http_client.h"

namespace ovrin {

struct ModelChoices {
    enum class Kind : std::uint8_t { none, loading, ready };

    Kind kind = Kind::none;
    std::vector<std::string> names = {};  // as many as a menu can hold
    std::size_t omitted = 0;              // how many more the service has

    bool operator==(const ModelChoices&) const = default;
};

// Main thread; destroying it drops the question.
class ModelChoicesLoader {
public:
    // The loops and the client outlive it; requests run on ioLoop. failed is told why there is no list.
    ModelChoicesLoader(EventLoop& loop, EventLoop& ioLoop, HTTPClientProtocol& http,
                       std::function<void(const std::string& reason)> failed);

    const Published<ModelChoices>& choices() const { return choices_; }

    // Asks the question of a modelListRequest(), in place of one that has not been answered yet.
    void load(HTTPRequest request);
    // Drops the question and the list.
    void forget();

private:
    Task<void> read(HTTPRequest request);

    EventLoop& ioLoop_;
    HTTPClientProtocol& http_;
    std::function<void(const std::string& reason)> failed_;
    Published<ModelChoices> choices_;
    TaskSlot question_;
};

}  // namespace ovrin
