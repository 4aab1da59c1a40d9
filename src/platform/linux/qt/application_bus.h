// The assistant's place on the session bus: one assistant runs in a session, and it is reached under its name
// (interface org.freedesktop.Application).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace ovrin {

class ApplicationBus {
public:
    struct Events {
        std::function<void()> reopen;  // the assistant was started a second time
        // Does what the name stands for; false when it stands for nothing.
        std::function<bool(const std::string& commandName)> perform;
    };
    // What it means to a running assistant that another one was started.
    enum class SecondStart : std::uint8_t { reopens, ignored };
    enum class Place : std::uint8_t {
        ours,    // from now on the events arrive, from the event loop
        taken,   // another assistant runs; it has been told that it was started again, unless that is to be ignored
        silent,  // another assistant has the place and does not answer
        noBus    // nobody can reach us, nor we another
    };

    ApplicationBus();
    ApplicationBus(const ApplicationBus&) = delete;
    ApplicationBus& operator=(const ApplicationBus&) = delete;
    // Gives the place up.
    ~ApplicationBus();

    // Once, on the main thread, after the QCoreApplication is there. Never throws.
    Place claim(Events events, SecondStart secondStart = SecondStart::reopens);

private:
    class Receiver;
    std::unique_ptr<Receiver> receiver_;
};

}  // namespace ovrin
