#include "cli/config_command.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "model/deep_seek_error.h"
#include "shortcuts/action.h"
#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "storage/keychain_store.h"
#include "storage/preferences.h"

namespace ovrin::cli {

namespace {

PreferenceType requireType(std::string_view key) {
    const std::optional<PreferenceType> type = preferenceType(key);
    if (!type) throw Error("there is no preference " + std::string(key));
    return *type;
}

// For a change: of the shortcuts, only those that an action reads can be set. What older versions left can be removed.
PreferenceType requireTypeOfReadKey(std::string_view key) {
    const auto isShortcutOf = [&](const ActionDescription& action) {
        return !action.shortcutName.empty() && key.substr(preference::shortcutPrefix.size()) == action.shortcutName;
    };
    if (key.starts_with(preference::shortcutPrefix) && std::ranges::none_of(allActions(), isShortcutOf)) {
        throw Error("there is no preference " + std::string(key));
    }
    return requireType(key);
}

// What is stored as text; none when nothing is. A secret is named but not shown.
std::optional<std::string> storedText(const DefaultsStore& defaults, std::string_view key) {
    if (!defaults.contains(key)) return std::nullopt;
    if (key == preference::legacyAPIKey) return "(not shown)";
    switch (requireType(key)) {
        case PreferenceType::boolean:
            return defaults.boolean(key) ? "true" : "false";
        case PreferenceType::integer:
            return std::to_string(defaults.integer(key));
        case PreferenceType::string:
            break;
    }
    // A shortcut that was cleared is stored as false instead of a text.
    return defaults.string(key).value_or("false");
}

bool parsedBoolean(const std::string& key, const std::string& value) {
    if (value == "true") return true;
    if (value == "false") return false;
    throw Error(key + " takes true or false");
}

std::int64_t parsedInteger(const std::string& key, const std::string& value) {
    std::int64_t number = 0;
    const char* end = value.data() + value.size();
    const auto [stop, failure] = std::from_chars(value.data(), end, number);
    if (failure != std::errc{} || stop != end) throw Error(key + " takes a whole number");
    if (key == preference::maxOutputTokens && number <= 0) throw DeepSeekError::invalidMaxOutputTokens();
    return number;
}

// The values that a key may have, where only some make sense.
struct Choice {
    std::string_view key;
    std::string_view values;  // separated by spaces
};
constexpr Choice choices[] = {
    {preference::apiStandard, "openai-compatible anthropic"},
    {preference::appearanceMode, "system light dark"},
    {preference::entranceIconStyle, "light dark"},
};

std::string checkedText(const std::string& key, const std::string& value) {
    if (key == preference::legacyAPIKey) throw Error("the API key is stored with 'ovrin config set-key'");
    if (key == preference::targetLanguage) {
        std::string tag = AppConfig::normalizeLanguageTag(text::trimmed(value));
        if (tag.empty()) throw Error(key + " takes a language tag such as zh-Hans, en or ja");
        return tag;
    }
    if (key == preference::connectionURL || key == preference::model) return std::string(text::trimmed(value));
    for (const Choice& choice : choices) {
        if (key != choice.key) continue;
        const std::string all = ' ' + std::string(choice.values) + ' ';
        if (value.empty() || all.find(' ' + value + ' ') == std::string::npos) {
            throw Error(key + " takes one of: " + std::string(choice.values));
        }
    }
    return value;
}

}  // namespace

int showPreferences(const ConfigGet& command, const DefaultsStore& defaults, Terminal& terminal) {
    if (command.key) {
        requireType(*command.key);
        const std::optional<std::string> value = storedText(defaults, *command.key);
        if (!value) throw Error(*command.key + " is not set");
        terminal.write(*value + '\n');
        return 0;
    }
    for (const Preference& known : allPreferences) {
        if (const auto value = storedText(defaults, known.key)) {
            terminal.write(std::string(known.key) + '=' + *value + '\n');
        }
    }
    return 0;
}

int changePreference(const ConfigSet& command, DefaultsStore& defaults) {
    switch (requireTypeOfReadKey(command.key)) {
        case PreferenceType::boolean:
            defaults.setBoolean(command.key, parsedBoolean(command.key, command.value));
            break;
        case PreferenceType::integer:
            defaults.setInteger(command.key, parsedInteger(command.key, command.value));
            break;
        case PreferenceType::string:
            defaults.setString(command.key, checkedText(command.key, command.value));
            break;
    }
    return 0;
}

int removePreference(const ConfigUnset& command, DefaultsStore& defaults) {
    requireType(command.key);
    defaults.remove({command.key});
    return 0;
}

int storeAPIKey(KeychainStore& keychain, Terminal& terminal, std::stop_token stop) {
    const std::string line = terminal.readSecretLine("API key: ", std::move(stop));
    const std::string key(text::trimmed(line));
    if (key.empty()) throw Error("no API key was given on standard input");
    if (!text::isValidUtf8(key)) throw Error("the API key is not valid UTF-8");
    keychain.writeString(key, std::string(AppConfig::apiKeyAccount));
    return 0;
}

int removeAPIKey(KeychainStore& keychain) {
    keychain.deleteString(std::string(AppConfig::apiKeyAccount));
    return 0;
}

}  // namespace ovrin::cli
