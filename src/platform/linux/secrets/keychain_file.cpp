#include "platform/linux/secrets/keychain_file.h"

#include <cerrno>
#include <optional>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/files.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumFileSize = 4U << 20U;  // bytes

// An object of services, each an object of accounts, each with its secret or null where it was deleted. None when the
// file is damaged, the empty object when there is none.
std::optional<json::Value> load(const fs::path& path) {
    std::string document;
    try {
        document = files::readFile(path, maximumFileSize);
    } catch (const files::FileError& error) {
        if (error.code() == ENOENT || error.code() == ENOTDIR) return json::Value::object();
        throw;
    }
    auto services = json::parse(document);
    if (!services || !services->is_object()) return std::nullopt;
    for (const json::Value& accounts : *services) {
        if (!accounts.is_object()) return std::nullopt;
    }
    return services;
}

// A copy or a restored backup may have lost the mode.
void closeToOthers(const fs::path& path) {
    constexpr fs::perms others = fs::perms::group_all | fs::perms::others_all;
    if ((fs::status(path).permissions() & others) == fs::perms::none) return;
    std::error_code ignored;  // reading goes on; the file may belong to the administrator
    fs::permissions(path, others, fs::perm_options::remove, ignored);
}

}  // namespace

KeychainFile::KeychainFile(fs::path path) : path_(std::move(path)) {}

KeychainFile::Entry KeychainFile::entry(const KeychainItem& item) const {
    const auto services = load(path_);
    if (!services) return {.state = Entry::State::damaged};
    const json::Value* accounts = json::member(*services, item.service);
    const json::Value* secret = accounts == nullptr ? nullptr : json::member(*accounts, item.account);
    if (secret == nullptr) return {};
    closeToOthers(path_);
    if (secret->is_null()) return {.state = Entry::State::deleted};
    if (!secret->is_string()) return {.state = Entry::State::damaged};
    return {.state = Entry::State::present, .data = secret->get<std::string>()};
}

void KeychainFile::set(const KeychainItem& item, std::string_view data) {
    change([&](json::Value& services) { services[item.service][item.account] = data; });
}

void KeychainFile::setDeleted(const KeychainItem& item) {
    change([&](json::Value& services) { services[item.service][item.account] = nullptr; });
}

void KeychainFile::forget(const KeychainItem& item) {
    const Entry::State state = entry(item).state;
    if (state == Entry::State::unknown || state == Entry::State::damaged) return;
    change([&](json::Value& services) {
        if (services.contains(item.service)) services[item.service].erase(item.account);
    });
}

void KeychainFile::change(const std::function<void(json::Value& services)>& edit) {
    files::makePrivateDirectory(path_.parent_path());
    const files::FileLock lock(path_);
    const auto present = load(path_);
    json::Value services = present.value_or(json::Value::object());
    edit(services);
    if (present == services) return;
    if (!present) files::keepAside(path_);
    files::replaceFile(path_, json::encoded(services), files::Access::onlyUser);
}

}  // namespace ovrin
