// Seam: the assistant of this session, as other processes of the user reach it.
#pragma once

#include <cstdint>
#include <string>

namespace ovrin {

// Any thread that may wait: the calls block until the session has answered, or the adapter's patience is over.
class RunningAssistant {
public:
    enum class Reply : std::uint8_t { accepted, notRunning };

    virtual ~RunningAssistant() = default;

    // Has the assistant perform a command (see app/remote_command.h), which has begun when this returns. Throws Error
    // when the session can't be asked or the assistant does not answer.
    virtual Reply perform(const std::string& commandName) = 0;

    // Starts the assistant, and returns once it can be reached or has failed to come up. False where there is no
    // display that it could run on. Throws Error that tells why it can't be started, where that is known.
    virtual bool start() = 0;
};

}  // namespace ovrin
