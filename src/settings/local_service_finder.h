// Looks for model services that run on this machine, where the usual ones listen.
//
// Asks each port for its list of models, without any key or header and over loopback alone. Main thread; destroying it
// drops the questions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/environment.h"
#include "base/event_loop.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "model/model_list.h"
#include "platform/http_client.h"

namespace ovrin {

struct LocalService {
    std::string name;           // as its makers call it, with its port where several are called so; else its address
    std::string connectionURL;  // http://127.0.0.1:8080/v1
    std::vector<std::string> models;

    bool operator==(const LocalService&) const = default;
};

class LocalServiceFinder {
public:
    using Ports = std::vector<std::uint16_t>;
    // Where Ollama, LM Studio, llama.cpp and vLLM listen unless they are told otherwise; those that OVRIN_LOCAL_PORTS
    // names instead where it is set, separated by commas (what is no port is passed over, so that "none" is none).
    static Ports ports(const Environment& environment);

    // All outlive the finder; the requests run on ioLoop.
    LocalServiceFinder(EventLoop& loop, EventLoop& ioLoop, HTTPClientProtocol& http, Ports ports);
    LocalServiceFinder(const LocalServiceFinder&) = delete;
    LocalServiceFinder& operator=(const LocalServiceFinder&) = delete;
    ~LocalServiceFinder();

    // None until the first look is over. In the order of the ports that are looked at.
    const Published<std::optional<std::vector<LocalService>>>& found() const { return found_; }

    // Asks anew; the answer is there within 0.3 seconds. What was found before stays until then.
    void look();
    // Drops a look that is under way.
    void stop();

private:
    Task<void> ask(std::size_t index);
    void finish();

    EventLoop& loop_;
    EventLoop& ioLoop_;
    HTTPClientProtocol& http_;
    Ports ports_;
    Published<std::optional<std::vector<LocalService>>> found_;
    std::vector<std::optional<LocalService>> answers_;  // by port
    int waiting_ = 0;
    std::optional<EventLoop::TimerId> deadline_;
    TaskGroup questions_;
};

}  // namespace ovrin
