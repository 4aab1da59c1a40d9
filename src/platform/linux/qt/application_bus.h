// The assistant's place on the session bus: one assistant runs in a session, and it is reached under its name
// (interface org.freedesktop.Application).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/launch.h"

namespace ovrin {

class ApplicationBus {
public:
    struct Events {
        // The assistant was started a second time. The activation for which the bus has started it is its start.
        std::function<void()> reopen;
        // Does what the name stands for; false when it stands for nothing.
        std::function<bool(const std::string& commandName)> perform;
        // Called before either, where the desktop lets the window that comes up come to the front by this token.
        std::function<void(const std::string& token)> activationTokenReceived{};
    };
    enum class Place : std::uint8_t {
        ours,    // from now on the events arrive, from the event loop
        taken,   // another assistant runs; it has been told of a start by the user
        silent,  // another assistant has the place and does not answer
        noBus    // nobody can reach us, nor we another
    };

    ApplicationBus();
    ApplicationBus(const ApplicationBus&) = delete;
    ApplicationBus& operator=(const ApplicationBus&) = delete;
    // Gives the place up.
    ~ApplicationBus();

    // Takes the place if it is free. Once, on the main thread, after the QCoreApplication is there. Never throws.
    Place claim(Events events, Launch launch = Launch::byUser);

private:
    class Receiver;
    std::unique_ptr<Receiver> receiver_;
};

}  // namespace ovrin
