#include "storage/app_config.h"

#include <initializer_list>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "base/text.h"
#include "storage/preferences.h"

namespace ovrin {
namespace {

std::optional<std::string> firstSet(const Environment& environment, std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names) {
        if (auto value = environment.value(name)) return value;
    }
    return std::nullopt;
}

std::map<std::string, std::string> decodedHeaders(std::string_view document) {
    const auto object = json::parse(document);
    if (!object || !object->is_object()) return {};
    std::map<std::string, std::string> headers;
    for (const auto& [name, value] : object->items()) {
        if (!value.is_string()) return {};
        headers.emplace(name, value.get<std::string>());
    }
    return headers;
}

std::string titleCased(std::string_view script) {
    std::string text = text::lowercased(script);
    if (text.front() >= 'a' && text.front() <= 'z') text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

// Takes the next piece that is not empty off the front of the tag; empty when nothing remains.
std::string_view takePiece(std::string_view& tag) {
    while (tag.starts_with('-')) tag.remove_prefix(1);
    const std::string_view piece = tag.substr(0, tag.find('-'));
    tag.remove_prefix(piece.size());
    return piece;
}

}  // namespace

AppConfig::AppConfig(DefaultsStore& defaults, EnvironmentSource environment, KeychainStore& keychain)
    : defaults_(defaults), environment_(std::move(environment)), keychain_(keychain) {}

ModelAPIStandard AppConfig::apiStandard() const {
    return apiStandard(environment_());
}

ModelAPIStandard AppConfig::apiStandard(const Environment& environment) const {
    const auto overriding = environment.value("OVRIN_API_STANDARD");
    if (const auto standard = modelAPIStandard(overriding.value_or(""))) return *standard;
    const auto stored = defaults_.string(preference::apiStandard);
    return modelAPIStandard(stored.value_or("")).value_or(ModelAPIStandard::openAICompatible);
}

std::string AppConfig::connectionURL() const {
    const Environment environment = environment_();
    return connectionURL(environment, apiStandard(environment));
}

std::string AppConfig::connectionURL(const Environment& environment, ModelAPIStandard standard) const {
    auto url = standard == ModelAPIStandard::anthropic
                   ? firstSet(environment, {"OVRIN_BASE_URL", "ANTHROPIC_BASE_URL"})
                   : firstSet(environment, {"OVRIN_BASE_URL", "OPENAI_BASE_URL", "DEEPSEEK_BASE_URL"});
    if (!url) url = defaults_.string(preference::connectionURL);
    return url.value_or(std::string(ModelAPIConfiguration::defaultOpenAIConnectionURL));
}

std::optional<std::string> AppConfig::apiKey() const {
    const Environment environment = environment_();
    return apiKey(environment, apiStandard(environment));
}

std::optional<std::string> AppConfig::apiKey(const Environment& environment, ModelAPIStandard standard) const {
    auto key = standard == ModelAPIStandard::anthropic
                   ? firstSet(environment, {"OVRIN_API_KEY", "ANTHROPIC_API_KEY"})
                   : firstSet(environment, {"OVRIN_API_KEY", "OPENAI_API_KEY", "DEEPSEEK_API_KEY"});
    if (key) return key;
    try {
        key = keychain_.resolveString(std::string(apiKeyAccount));
    } catch (const KeychainStore::KeychainError&) {
        key.reset();  // a keychain that cannot be read counts as one that holds nothing
    }
    if (key && !key->empty()) return key;
    return defaults_.string(preference::legacyAPIKey);
}

std::map<std::string, std::string> AppConfig::customHeaders() const {
    try {
        return decodedHeaders(keychain_.resolveString(std::string(customHeadersAccount)).value_or(""));
    } catch (const KeychainStore::KeychainError&) {
        return {};  // a keychain that cannot be read counts as one that holds nothing
    }
}

ModelAPIConfiguration AppConfig::modelAPIConfiguration() const {
    const Environment environment = environment_();
    const ModelAPIStandard standard = apiStandard(environment);
    const std::int64_t limit = defaults_.integer(preference::maxOutputTokens);
    return {
        .standard = standard,
        .connectionURL = connectionURL(environment, standard),
        .apiKey = apiKey(environment, standard).value_or(""),
        .model = defaults_.string(preference::model).value_or(std::string(ModelAPIConfiguration::defaultOpenAIModel)),
        .customHeaders = customHeaders(),
        .maxOutputTokens = limit > 0 ? limit : ModelAPIConfiguration::defaultMaxOutputTokens};
}

void AppConfig::saveCustomHeaders(const std::map<std::string, std::string>& headers) {
    const std::string account(customHeadersAccount);
    if (headers.empty()) {
        keychain_.deleteString(account);
    } else {
        keychain_.writeString(json::encoded(headers), account);
    }
}

void AppConfig::resetModelConfiguration() {
    keychain_.deleteString(std::string(apiKeyAccount));
    keychain_.deleteString(std::string(customHeadersAccount));
    defaults_.remove({preference::apiStandard, preference::connectionURL, preference::model,
                      preference::maxOutputTokens, preference::legacyAPIKey});
}

void AppConfig::migrateLegacyAPIKeyIfNeeded() {
    const auto stored = defaults_.string(preference::legacyAPIKey);
    const std::string key(text::trimmed(stored.value_or("")));
    if (key.empty()) return;
    try {
        const std::string account(apiKeyAccount);
        const auto present = keychain_.resolveString(account);
        if (present.value_or("").empty()) keychain_.writeString(key, account);
        defaults_.remove({preference::legacyAPIKey});
    } catch (const Error&) {
        return;  // the stored key stays, and the next start tries again
    }
}

AppAppearanceMode AppConfig::appearanceMode() const {
    const auto overriding = environment_().value("OVRIN_APPEARANCE");
    if (const auto mode = appAppearanceMode(overriding.value_or(""))) return *mode;
    const auto stored = defaults_.string(preference::appearanceMode);
    return appAppearanceMode(stored.value_or("")).value_or(AppAppearanceMode::system);
}

void AppConfig::setAppearanceMode(AppAppearanceMode mode) {
    defaults_.setString(preference::appearanceMode, rawValue(mode));
}

EntranceIconStyle AppConfig::entranceIconStyle() const {
    const auto stored = defaults_.string(preference::entranceIconStyle);
    return ovrin::entranceIconStyle(stored.value_or("")).value_or(EntranceIconStyle::light);
}

std::string AppConfig::targetLanguage() const {
    if (auto stored = defaults_.string(preference::targetLanguage)) return *stored;
    const auto preferred = text::preferredLanguages(environment_());
    return normalizeLanguageTag(preferred.empty() ? "zh-Hans" : preferred.front());
}

std::string AppConfig::normalizeLanguageTag(std::string_view tag) {
    constexpr std::size_t scriptLength = 4;  // characters
    std::string_view rest = tag;
    const std::string_view language = takePiece(rest);
    if (language.empty()) return std::string(tag);
    for (std::string_view piece = takePiece(rest); !piece.empty(); piece = takePiece(rest)) {
        if (text::characterCount(piece, scriptLength + 1) == scriptLength) {
            return text::lowercased(language) + "-" + titleCased(piece);
        }
    }
    return text::lowercased(language);
}

}  // namespace ovrin
