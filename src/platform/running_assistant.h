// Seam: the assistant of this session, as other processes of the user reach it.
#pragma once

#include <cstdint>
#include <string>

namespace ovrin {

class RunningAssistant {
public:
    enum class Reply : std::uint8_t { accepted, notRunning };

    virtual ~RunningAssistant() = default;

    // Has it perform a command (see app/remote_command.h); it has begun when this returns. Throws Error when the
    // session can't be asked or the assistant does not answer.
    virtual Reply perform(const std::string& commandName) = 0;

    // Starts it, and returns once it can be reached or has failed to come up. False where there is no display that it
    // could run on. Throws Error that tells why it can't be started, where that is known.
    virtual bool start() = 0;
};

}  // namespace ovrin
