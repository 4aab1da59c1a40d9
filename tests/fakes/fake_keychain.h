// A keychain in memory that tests steer: it fails with the status it is told to and remembers what it was asked.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/keychain.h"

namespace ovrin {

class FakeKeychain : public Keychain {
public:
    std::map<std::string, std::string> items;        // account to data
    std::map<std::string, KeychainStatus> failures;  // operation ("add") to the status it answers
    std::map<KeychainStatus, std::string> messages;
    bool isFile = false;
    std::vector<std::string> calls;  // "update deepseek-api-key", in order

    KeychainMatch copyMatching(const KeychainItem& item) override {
        const std::lock_guard guard(lock_);
        if (const auto failure = note("copyMatching", item)) return {.status = *failure};
        const auto found = items.find(item.account);
        if (found == items.end()) return {.status = keychainItemNotFound};
        return {.status = keychainSuccess, .data = found->second};
    }

    KeychainStatus update(const KeychainItem& item, std::string_view data) override {
        const std::lock_guard guard(lock_);
        if (const auto failure = note("update", item)) return *failure;
        const auto found = items.find(item.account);
        if (found == items.end()) return keychainItemNotFound;
        found->second = data;
        return keychainSuccess;
    }

    KeychainStatus add(const KeychainItem& item, std::string_view data) override {
        const std::lock_guard guard(lock_);
        if (const auto failure = note("add", item)) return *failure;
        items[item.account] = data;
        return keychainSuccess;
    }

    KeychainStatus remove(const KeychainItem& item) override {
        const std::lock_guard guard(lock_);
        if (const auto failure = note("remove", item)) return *failure;
        return items.erase(item.account) == 0 ? keychainItemNotFound : keychainSuccess;
    }

    bool isKeptInFile() override {
        const std::lock_guard guard(lock_);
        return isFile;
    }

    std::optional<std::string> message(KeychainStatus status) const override {
        const auto found = messages.find(status);
        return found == messages.end() ? std::nullopt : std::optional(found->second);
    }

private:
    std::optional<KeychainStatus> note(const std::string& operation, const KeychainItem& item) {
        calls.push_back(operation + " " + item.account);
        const auto failure = failures.find(operation);
        return failure == failures.end() ? std::nullopt : std::optional(failure->second);
    }

    std::mutex lock_;
};

}  // namespace ovrin
