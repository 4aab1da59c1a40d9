// Seam: the secret store of the platform. One item per service and account; its data is the bytes of a secret.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ovrin {

// What a store answers: 0 for success, else a code of the store's own. Only the two below mean something elsewhere.
using KeychainStatus = std::int32_t;
inline constexpr KeychainStatus keychainSuccess = 0;
inline constexpr KeychainStatus keychainItemNotFound = -25300;

struct KeychainItem {
    std::string service;
    std::string account;
};

struct KeychainMatch {
    KeychainStatus status = keychainSuccess;
    std::string data = {};  // bytes; meaningful on success only
};

// Any thread. Each call blocks until the store has answered or the adapter's patience is over; where the store has to
// ask the user for a password that can take as long as a person does.
class Keychain {
public:
    virtual ~Keychain() = default;

    virtual KeychainMatch copyMatching(const KeychainItem& item) = 0;

    // Replaces the data of an item; keychainItemNotFound when there is none.
    virtual KeychainStatus update(const KeychainItem& item, std::string_view data) = 0;

    // Makes an item that update() did not find.
    virtual KeychainStatus add(const KeychainItem& item, std::string_view data) = 0;

    // Deletes the item; keychainItemNotFound when there is none.
    virtual KeychainStatus remove(const KeychainItem& item) = 0;

    // Whether secrets are kept in a file, because the platform has no store that answers.
    virtual bool isKeptInFile() = 0;

    // What a status means, in the user's language and without any secret; none for one the store does not know.
    virtual std::optional<std::string> message(KeychainStatus status) const = 0;
};

}  // namespace ovrin
