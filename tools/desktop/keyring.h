// The secret service of a private desktop (gnome-keyring), with the prompt by which it asks the user for the password.
// What it keeps lies in the desktop's home and is there again when another one starts. One thread.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "desktop/private_desktop.h"

namespace ovrin {

class Keyring {
public:
    static constexpr const char* password = "password";  // what unlocks it
    static constexpr const char* promptProgram = "gcr-prompter";

    // Returns once it answers; it is unlocked. Throws Error when it did not come up.
    explicit Keyring(const PrivateDesktop& desktop);

    // From now on whoever wants a secret makes it ask the user.
    void lock() const;
    // It keeps its name on the bus and answers nobody.
    void freeze() const;

    // What it keeps for Ovrin under the account; none when it keeps nothing. It has to be unlocked.
    std::optional<std::string> secret(const std::string& account) const;

private:
    BusView::Method serviceMethod(const char* name) const;
    void offerPrompt() const;

    const PrivateDesktop& desktop_;
    std::unique_ptr<ChildProcess> daemon_;
};

}  // namespace ovrin
