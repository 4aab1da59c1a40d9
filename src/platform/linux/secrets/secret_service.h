// The desktop's secret service (org.freedesktop.secrets), through libsecret. Items carry the attributes "service" and
// "account", so that other tools find them. Any thread; calls share nothing.
//
// No call waits longer than its patience, whatever the service or the bus does: the work is done on a thread of its
// own, which is told to stop and left behind when time is up. Only a locked collection is worth more patience: then
// the user is being asked for a password. When the program closes no call waits any longer.
#pragma once

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>

#include "platform/keychain.h"
#include "platform/linux/desktop/session_bus.h"

namespace ovrin {

class SecretService {
public:
    struct Patience {
        std::chrono::milliseconds service{10'000};  // for the service to start and answer
        std::chrono::milliseconds user{60'000};     // for a password to be typed
    };

    // closing: stopped when the program ends.
    SecretService(SessionBus bus, Patience patience, std::stop_token closing = {});

    // All answer keychainUnavailable where no service is to be had, keychainLocked, keychainTimedOut or keychainRefused
    // where it fails; keychainTimedOut too when the program is closing.
    KeychainMatch find(const KeychainItem& item) const;
    KeychainStatus replace(const KeychainItem& item, std::string_view data) const;  // keychainItemNotFound: none there
    KeychainStatus store(const KeychainItem& item, std::string_view data) const;    // in the default collection
    KeychainStatus remove(const KeychainItem& item) const;                          // keychainItemNotFound: none there

    // False where the others would answer keychainUnavailable.
    bool isAvailable() const;

private:
    class Call;
    class Session;
    using Operation = std::function<KeychainMatch(Session&)>;

    static KeychainMatch converse(Call& call, const Operation& operation);
    KeychainMatch perform(Operation operation) const;

    SessionBus bus_;
    Patience patience_;
    std::stop_token closing_;
};

}  // namespace ovrin
