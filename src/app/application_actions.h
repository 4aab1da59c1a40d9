// What the user can have the program itself do, beside the actions on texts: its other windows, updates, the end.
#pragma once

#include <cstdint>

namespace ovrin {

enum class AppWindow : std::uint8_t { directAI, inputTranslate, history, settings };

// Main thread. Each operation returns at once.
class ApplicationActions {
public:
    virtual ~ApplicationActions() = default;

    // Whether this build has the window. Where it has not, nothing offers it.
    virtual bool has(AppWindow window) const = 0;

    virtual void showHistory() = 0;
    virtual void showSettings() = 0;

    // Whether the build knows where updates come from.
    virtual bool isUpdateConfigured() const = 0;
    // Says in a toast why not when it can't.
    virtual void checkForUpdates() = 0;

    virtual void quit() = 0;
};

}  // namespace ovrin
