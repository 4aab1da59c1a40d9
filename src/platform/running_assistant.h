// Seam: the assistant that runs already in this session, as other processes of the user reach it.
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
};

}  // namespace ovrin
