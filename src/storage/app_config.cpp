#include "storage/app_config.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "base/text.h"
#include "model/local_service.h"
#include "storage/preferences.h"

namespace ovrin {
namespace {

constexpr std::array modelPreferences{preference::apiStandard, preference::connectionURL, preference::model,
                                      preference::maxOutputTokens, preference::legacyAPIKey};

using Names = std::vector<std::string_view>;

// In the order in which they count.
Names connectionURLVariables(ModelAPIStandard standard) {
    if (standard == ModelAPIStandard::anthropic) return {"OVRIN_BASE_URL", "ANTHROPIC_BASE_URL"};
    return {"OVRIN_BASE_URL", "OPENAI_BASE_URL", "DEEPSEEK_BASE_URL"};
}

Names apiKeyVariables(ModelAPIStandard standard) {
    if (standard == ModelAPIStandard::anthropic) return {"OVRIN_API_KEY", "ANTHROPIC_API_KEY"};
    return {"OVRIN_API_KEY", "OPENAI_API_KEY", "DEEPSEEK_API_KEY"};
}

std::optional<std::string> firstSet(const Environment& environment, const Names& names) {
    const auto set = std::ranges::find_if(names, [&](auto name) { return environment.value(name).has_value(); });
    if (set == names.end()) return std::nullopt;
    return std::string(*set);
}

std::optional<std::string> firstValue(const Environment& environment, const Names& names) {
    const auto name = firstSet(environment, names);
    return name ? environment.value(*name) : std::nullopt;
}

std::optional<std::string> nameIf(bool counts, std::string_view name) {
    return counts ? std::optional<std::string>(name) : std::nullopt;
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
    auto url = firstValue(environment, connectionURLVariables(standard));
    if (!url) url = defaults_.string(preference::connectionURL);
    return url.value_or(std::string(ModelAPIConfiguration::defaultOpenAIConnectionURL));
}

std::string AppConfig::model() const {
    return defaults_.string(preference::model).value_or(std::string(ModelAPIConfiguration::defaultOpenAIModel));
}

std::int64_t AppConfig::maxOutputTokens() const {
    const std::int64_t stored = defaults_.integer(preference::maxOutputTokens);
    return stored > 0 ? stored : ModelAPIConfiguration::defaultMaxOutputTokens;
}

std::optional<std::string> AppConfig::apiKey() const {
    const Environment environment = environment_();
    return apiKey(environment, apiStandard(environment));
}

std::optional<std::string> AppConfig::apiKey(const Environment& environment, ModelAPIStandard standard) const {
    return apiKey(environment, standard, [this](const std::string& account) -> std::optional<std::string> {
        try {
            return keychain_.resolveString(account);
        } catch (const KeychainStore::KeychainError&) {
            return std::nullopt;  // a keychain that cannot be read counts as one that holds nothing
        }
    });
}

std::optional<std::string> AppConfig::apiKey(const Environment& environment, ModelAPIStandard standard,
                                             const ReadSecret& read) const {
    if (auto key = firstValue(environment, apiKeyVariables(standard))) return key;
    if (auto key = read(std::string(apiKeyAccount)); key && !key->empty()) return key;
    return defaults_.string(preference::legacyAPIKey);
}

std::optional<std::string> AppConfig::rereadAPIKey() const {
    const Environment environment = environment_();
    return apiKey(environment, apiStandard(environment),
                  [this](const std::string& account) { return keychain_.rereadString(account); });
}

std::map<std::string, std::string> AppConfig::customHeaders() const {
    try {
        return decodedHeaders(keychain_.resolveString(std::string(customHeadersAccount)).value_or(""));
    } catch (const KeychainStore::KeychainError&) {
        return {};  // a keychain that cannot be read counts as one that holds nothing
    }
}

std::map<std::string, std::string> AppConfig::rereadCustomHeaders() const {
    return decodedHeaders(keychain_.rereadString(std::string(customHeadersAccount)).value_or(""));
}

AppConfig::Overrides AppConfig::overrides() const {
    const Environment environment = environment_();
    const ModelAPIStandard standard = apiStandard(environment);
    const auto named = [&](const char* name) { return environment.value(name).value_or(""); };
    return {.apiStandard = nameIf(modelAPIStandard(named("OVRIN_API_STANDARD")).has_value(), "OVRIN_API_STANDARD"),
            .connectionURL = firstSet(environment, connectionURLVariables(standard)),
            .apiKey = firstSet(environment, apiKeyVariables(standard)),
            .appearanceMode = nameIf(appAppearanceMode(named("OVRIN_APPEARANCE")).has_value(), "OVRIN_APPEARANCE")};
}

std::optional<std::string> AppConfig::apiKeyOverride() const {
    const Environment environment = environment_();
    return firstValue(environment, apiKeyVariables(apiStandard(environment)));
}

bool AppConfig::namesModelService() const {
    const Overrides given = overrides();
    if (given.apiStandard || given.connectionURL || given.apiKey) return true;
    return std::ranges::any_of(modelPreferences, [this](auto key) { return defaults_.contains(key); });
}

ModelAPIConfiguration AppConfig::modelAPIConfiguration() const {
    const Environment environment = environment_();
    const ModelAPIStandard standard = apiStandard(environment);
    ModelAPIConfiguration configuration{.standard = standard,
                                        .connectionURL = connectionURL(environment, standard),
                                        .apiKey = apiKey(environment, standard).value_or(""),
                                        .model = model(),
                                        .customHeaders = customHeaders(),
                                        .maxOutputTokens = maxOutputTokens()};
    return withLocalKey(std::move(configuration));
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
    defaults_.remove({modelPreferences.begin(), modelPreferences.end()});
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
