// The preferences as the rest of the program reads them: each at the moment it is needed, from the process environment
// first where it may override, then from what is stored, then the default. Reading never fails. Any thread.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/environment.h"
#include "model/model_api_configuration.h"
#include "storage/defaults_store.h"
#include "storage/keychain_store.h"
#include "theme/app_appearance_mode.h"
#include "theme/entrance_icon_style.h"

namespace ovrin {

class AppConfig {
public:
    struct LanguageOption {
        std::string_view tag;   // as normalizeLanguageTag() gives it
        std::string_view name;  // in its own language
    };

    // The target languages that are offered, in the order of every picker.
    static constexpr std::array languageOptions{
        LanguageOption{"zh-Hans", "简体中文"}, LanguageOption{"zh-Hant", "繁體中文"}, LanguageOption{"en", "English"},
        LanguageOption{"ja", "日本語"},        LanguageOption{"ko", "한국어"},        LanguageOption{"fr", "Français"},
        LanguageOption{"de", "Deutsch"},       LanguageOption{"es", "Español"},       LanguageOption{"ru", "Русский"},
    };

    // Accounts in the keychain: the model service's key, and the custom headers as a JSON object of name to value.
    static constexpr std::string_view apiKeyAccount = "deepseek-api-key";
    static constexpr std::string_view customHeadersAccount = "model-custom-headers";

    // The stores outlive the object.
    AppConfig(DefaultsStore& defaults, EnvironmentSource environment, KeychainStore& keychain);

    // The model connection.
    ModelAPIStandard apiStandard() const;
    std::string connectionURL() const;
    std::string model() const;
    std::int64_t maxOutputTokens() const;
    std::optional<std::string> apiKey() const;                 // may ask the keychain, which may take its time
    std::map<std::string, std::string> customHeaders() const;  // likewise; empty on any problem
    // Not validated. A local service that has been given no key gets the one that stands for none.
    ModelAPIConfiguration modelAPIConfiguration() const;

    // The same with the keychain asked anew. Throw KeychainStore::KeychainError when it cannot be read.
    std::optional<std::string> rereadAPIKey() const;
    std::map<std::string, std::string> rereadCustomHeaders() const;

    // The environment variables that give a value now, by name.
    struct Overrides {
        std::optional<std::string> apiStandard;
        std::optional<std::string> connectionURL;
        std::optional<std::string> apiKey;
        std::optional<std::string> appearanceMode;
    };
    Overrides overrides() const;

    // The key that the environment gives, if it does. Does not ask the keychain.
    std::optional<std::string> apiKeyOverride() const;

    // Whether the environment or the preferences say anything about the model service. Does not ask the keychain.
    bool namesModelService() const;

    // The empty map deletes what is stored. Throws KeychainStore::KeychainError.
    void saveCustomHeaders(const std::map<std::string, std::string>& headers);

    // Back to the defaults: key and headers first, then the stored settings, up to the first failure, which is thrown
    // (KeychainStore::KeychainError, files::FileError). Prompts, language and appearance stay.
    void resetModelConfiguration();

    // Moves a key that is stored in plain text into the keychain, unless that holds one. Whatever fails is silent and
    // leaves the stored key for the next start.
    void migrateLegacyAPIKeyIfNeeded();

    AppAppearanceMode appearanceMode() const;
    void setAppearanceMode(AppAppearanceMode mode);  // throws files::FileError
    EntranceIconStyle entranceIconStyle() const;

    // The tag that translations go to by default: as stored, else the user's first preferred language, normalised.
    std::string targetLanguage() const;

    // Lower-case language plus, if there is one, the script: "ZH-hant-TW" gives "zh-Hant", "en-US" gives "en".
    static std::string normalizeLanguageTag(std::string_view tag);

private:
    using ReadSecret = std::function<std::optional<std::string>(const std::string& account)>;

    std::string connectionURL(const Environment& environment, ModelAPIStandard standard) const;
    std::optional<std::string> apiKey(const Environment& environment, ModelAPIStandard standard) const;
    std::optional<std::string> apiKey(const Environment& environment, ModelAPIStandard standard,
                                      const ReadSecret& read) const;
    ModelAPIStandard apiStandard(const Environment& environment) const;

    DefaultsStore& defaults_;
    EnvironmentSource environment_;
    KeychainStore& keychain_;
};

}  // namespace ovrin
