#include "storage/defaults_store.h"

#include <cerrno>
#include <charconv>
#include <map>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/number_text.h"
#include "base/text.h"

namespace ovrin {
namespace {

constexpr std::size_t maximumFileSize = 16U << 20U;  // bytes; a thousand times what the program writes

std::optional<std::string> asString(const json::Value& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
    if (value.is_number_float()) return shortestDecimalText(value.get<double>());
    if (value.is_number()) return json::encoded(value);
    return std::nullopt;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    text = text::trimmed(text);
    std::int64_t number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

bool isTrueText(std::string_view text) {
    const std::string lower = text::asciiLowercased(text::trimmed(text));
    return lower == "true" || lower == "yes" || parseInteger(lower).value_or(0) != 0;
}

}  // namespace

struct DefaultsStore::Content {
    json::Value values = json::Value::object();
    bool isDamaged = false;
};

// Values by their keys; none for a key that goes.
struct DefaultsStore::Changes {
    std::map<std::string, std::optional<json::Value>, std::less<>> values{};

    void apply(json::Value& content) const {
        for (const auto& [key, value] : values) {
            if (value) content[key] = *value;
            if (!value) content.erase(key);
        }
    }
    void add(const Changes& later) {
        for (const auto& [key, value] : later.values) values[key] = value;
    }
    void remove(const Changes& written) {
        std::erase_if(values, [&](const auto& change) {
            const auto found = written.values.find(change.first);
            return found != written.values.end() && found->second == change.second;
        });
    }
};

DefaultsStore::DefaultsStore(std::filesystem::path file)
    : file_(std::move(file)), deferredChanges_(std::make_unique<Changes>()) {}

DefaultsStore::~DefaultsStore() = default;

void DefaultsStore::deferChanges(std::chrono::milliseconds patience, std::function<void()> deferred) {
    patience_ = patience;
    deferred_ = std::move(deferred);
}

std::optional<std::string> DefaultsStore::string(std::string_view key) const {
    const auto content = this->content();
    const json::Value* value = json::member(content->values, key);
    return value == nullptr ? std::nullopt : asString(*value);
}

bool DefaultsStore::boolean(std::string_view key) const {
    const auto content = this->content();
    const json::Value* value = json::member(content->values, key);
    if (value == nullptr) return false;
    if (value->is_string()) return isTrueText(value->get_ref<const std::string&>());
    if (value->is_number()) return value->get<double>() != 0;
    return value->is_boolean() && value->get<bool>();
}

std::int64_t DefaultsStore::integer(std::string_view key) const {
    const auto content = this->content();
    const json::Value* value = json::member(content->values, key);
    if (value == nullptr) return 0;
    if (value->is_string()) return parseInteger(value->get_ref<const std::string&>()).value_or(0);
    if (value->is_boolean()) return value->get<bool>() ? 1 : 0;
    return json::integer(content->values, key).value_or(0);
}

bool DefaultsStore::contains(std::string_view key) const {
    const auto content = this->content();
    return json::member(content->values, key) != nullptr;
}

void DefaultsStore::setString(std::string_view key, std::string_view value) {
    change({{{std::string(key), text::repairedUtf8(std::string(value))}}});
}

void DefaultsStore::setBoolean(std::string_view key, bool value) {
    change({{{std::string(key), value}}});
}

void DefaultsStore::setInteger(std::string_view key, std::int64_t value) {
    change({{{std::string(key), value}}});
}

void DefaultsStore::remove(const std::vector<std::string_view>& keys) {
    Changes changes;
    for (const std::string_view key : keys) changes.values[std::string(key)] = std::nullopt;
    change(changes);
}

std::shared_ptr<DefaultsStore::Content> DefaultsStore::read() const {
    auto content = std::make_shared<Content>();
    try {
        auto values = json::parse(files::readFile(file_, maximumFileSize));
        content->isDamaged = !values || !values->is_object();
        if (!content->isDamaged) content->values = std::move(*values);
    } catch (const files::FileError& error) {
        // Reading never fails: what cannot be read counts as empty, and is not lost by a later change either.
        content->isDamaged = error.code() != ENOENT && error.code() != ENOTDIR;
    }
    return content;
}

std::shared_ptr<const DefaultsStore::Content> DefaultsStore::content() const {
    const std::lock_guard guard(lock_);
    if (content_ == nullptr || !stamp_.stillHolds(file_)) {
        stamp_ = files::Stamp::of(file_);  // before reading, so that a change in between is noticed next time
        const std::shared_ptr<Content> present = read();
        deferredChanges_->apply(present->values);
        content_ = present;
    }
    return content_;
}

void DefaultsStore::change(const Changes& changes) {
    try {
        write(changes, patience_);
    } catch (const files::FileError& error) {
        if (error.code() != EWOULDBLOCK || !deferred_) throw;
        {
            const std::lock_guard guard(lock_);
            deferredChanges_->add(changes);
            content_ = nullptr;
        }
        deferred_();
    }
}

bool DefaultsStore::writeDeferred(std::chrono::milliseconds patience) {
    const auto isDone = [this] {
        const std::lock_guard guard(lock_);
        return deferredChanges_->values.empty();
    };
    try {
        if (!isDone()) write({}, patience);
    } catch (const files::FileError&) {
        return false;
    }
    return isDone();
}

void DefaultsStore::write(const Changes& changes, std::chrono::milliseconds patience) {
    files::makeDirectories(file_.parent_path());
    const files::FileLock lock(file_, patience);
    Changes all;
    {
        const std::lock_guard guard(lock_);
        all = *deferredChanges_;
    }
    const Changes deferred = all;
    all.add(changes);
    const auto content = read();
    json::Value values = content->values;
    all.apply(values);
    if (values != content->values) {
        if (content->isDamaged) files::keepAside(file_);
        files::replaceFile(file_, json::encoded(values, json::Layout::indented) + "\n", files::Access::onlyUser);
    }
    const std::lock_guard guard(lock_);
    deferredChanges_->remove(deferred);
    content_ = nullptr;
}

}  // namespace ovrin
