#include "storage/keychain_store.h"

#include <utility>

#include "base/text.h"

namespace ovrin {
namespace {

KeychainItem itemOf(const std::string& account) {
    return {.service = std::string(KeychainStore::service), .account = account};
}

}  // namespace

KeychainStore::KeychainError::KeychainError(KeychainStatus status, std::string description)
    : Error(std::move(description)), status_(status) {}

KeychainStore::KeychainError KeychainStore::KeychainError::unexpectedStatus(KeychainStatus status,
                                                                            const Keychain& keychain) {
    auto message = keychain.message(status);
    return {status, message ? std::move(*message) : "密钥环错误：" + std::to_string(status)};
}

std::optional<std::string> KeychainStore::MemoryCache::resolve(const std::string& account, const Loader& loader) {
    const std::lock_guard guard(lock_);
    if (const auto known = entries_.find(account); known != entries_.end()) return known->second;
    Entry& entry = entries_[account];  // missing, should the loader throw
    entry = loader();
    return entry;
}

void KeychainStore::MemoryCache::setValue(const std::string& account, std::string text) {
    const std::lock_guard guard(lock_);
    entries_[account] = std::move(text);
}

void KeychainStore::MemoryCache::setMissing(const std::string& account) {
    const std::lock_guard guard(lock_);
    entries_[account] = std::nullopt;
}

void KeychainStore::MemoryCache::forgetAll() {
    const std::lock_guard guard(lock_);
    entries_.clear();
}

std::optional<std::string> KeychainStore::readString(const std::string& account) const {
    KeychainMatch match = keychain_.copyMatching(itemOf(account));
    if (match.status == keychainItemNotFound) return std::nullopt;
    if (match.status != keychainSuccess) throw KeychainError::unexpectedStatus(match.status, keychain_);
    if (!text::isValidUtf8(match.data)) return std::nullopt;
    return std::move(match.data);
}

std::optional<std::string> KeychainStore::resolveString(const std::string& account) {
    return cache_.resolve(account, [&] { return readString(account); });
}

std::optional<std::string> KeychainStore::rereadString(const std::string& account) {
    auto found = readString(account);
    if (found) {
        cache_.setValue(account, *found);
    } else {
        cache_.setMissing(account);
    }
    return found;
}

void KeychainStore::writeString(const std::string& value, const std::string& account) {
    const KeychainItem item = itemOf(account);
    KeychainStatus status = keychain_.update(item, value);
    if (status == keychainItemNotFound) status = keychain_.add(item, value);
    if (status != keychainSuccess) throw KeychainError::unexpectedStatus(status, keychain_);
    cache_.setValue(account, value);
}

void KeychainStore::deleteString(const std::string& account) {
    const KeychainStatus status = keychain_.remove(itemOf(account));
    if (status != keychainSuccess && status != keychainItemNotFound) {
        throw KeychainError::unexpectedStatus(status, keychain_);
    }
    cache_.setMissing(account);
}

}  // namespace ovrin
