// Reaches the assistant over the session bus. Where the bus can start it, the bus does; else this program's own
// executable is started, with the API keys of this process's environment.
#pragma once

#include <chrono>

#include "platform/running_assistant.h"

namespace ovrin {

class SessionBusAssistant final : public RunningAssistant {
public:
    // patience: how long the bus and the assistant may take to answer.
    explicit SessionBusAssistant(std::chrono::milliseconds patience = std::chrono::seconds(5)) : patience_(patience) {}

    Reply perform(const std::string& commandName) override;
    bool start() override;

private:
    std::chrono::milliseconds patience_;
};

}  // namespace ovrin
