// The secrets of the program (the model service's key, the custom request headers) in the platform's secret store,
// behind a cache, so that the store is asked at most once per account while the process runs. Any thread.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "platform/keychain.h"

namespace ovrin {

class KeychainStore {
public:
    static constexpr std::string_view service = "com.quel.ovrin";

    // The store answered with a status other than success.
    class KeychainError : public Error {
    public:
        static KeychainError unexpectedStatus(KeychainStatus status, const Keychain& keychain);

        KeychainStatus status() const noexcept { return status_; }

    private:
        KeychainError(KeychainStatus status, std::string description);

        KeychainStatus status_;
    };

    // What this process knows of the accounts. Never expires: what another process changes is not seen until the cache
    // is told to forget.
    class MemoryCache {
    public:
        // Reads the text of an account, none when it has none.
        using Loader = std::function<std::optional<std::string>()>;

        // The text that is known, else what the loader gives. The loader runs inside the lock, so that first reads of
        // one account from several threads reach the store once. What it throws is passed on; the account then counts
        // as missing, and nobody asks the store again.
        std::optional<std::string> resolve(const std::string& account, const Loader& loader);

        void setValue(const std::string& account, std::string text);
        void setMissing(const std::string& account);
        void forgetAll();

    private:
        using Entry = std::optional<std::string>;  // none: missing

        std::mutex lock_;
        std::map<std::string, Entry> entries_;
    };

    // keychain: outlives the store.
    explicit KeychainStore(Keychain& keychain) : keychain_(keychain) {}

    // Straight from the store; none when there is no such item or it is no UTF-8. Throws KeychainError.
    std::optional<std::string> readString(const std::string& account) const;

    // The same through the cache: what everybody but the cache calls.
    std::optional<std::string> resolveString(const std::string& account);

    // Straight from the store, and the cache takes it over. Throws KeychainError and then leaves the cache as it was.
    std::optional<std::string> rereadString(const std::string& account);

    // Replaces or makes the item. Throws KeychainError and then leaves the cache as it was.
    void writeString(const std::string& value, const std::string& account);

    // Deletes the item, if there is one. Throws KeychainError and then leaves the cache as it was.
    void deleteString(const std::string& account);

    bool isKeptInFile() const { return keychain_.isKeptInFile(); }

    MemoryCache& cache() { return cache_; }

private:
    Keychain& keychain_;
    MemoryCache cache_;
};

}  // namespace ovrin
