// The one table of stored preferences: their keys and the type each is stored as. Shortcuts are stored under
// "KeyboardShortcuts_" plus their name, as text.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace ovrin {

enum class PreferenceType { string, boolean, integer };

namespace preference {

inline constexpr std::string_view targetLanguage = "ovrin.targetLanguage";
inline constexpr std::string_view apiStandard = "ovrin.apiStandard";
inline constexpr std::string_view connectionURL = "ovrin.connectionURL";
inline constexpr std::string_view model = "ovrin.model";
inline constexpr std::string_view maxOutputTokens = "ovrin.maxOutputTokens";
// A key in plain text, from before there was a keychain. Only read, and moved into the keychain at start-up.
inline constexpr std::string_view legacyAPIKey = "ovrin.apiKey";
inline constexpr std::string_view translationPrompt = "ovrin.translationPrompt";
inline constexpr std::string_view explanationPrompt = "ovrin.explanationPrompt";
inline constexpr std::string_view launchAtLogin = "ovrin.launchAtLogin";
inline constexpr std::string_view appearanceMode = "ovrin.appearanceMode";
inline constexpr std::string_view entranceIconStyle = "ovrin.entranceIconStyle";
inline constexpr std::string_view resultWindowAlwaysOnTop = "ovrin.resultWindowAlwaysOnTop";
inline constexpr std::string_view didDismissWelcome = "ovrin.didDismissWelcome";
inline constexpr std::string_view didMigratePrimaryDefaultShortcuts = "ovrin.didMigratePrimaryDefaultShortcuts.v2";
inline constexpr std::string_view didMigrateRetiredDefaultShortcuts = "ovrin.didMigrateRetiredDefaultShortcuts.v1";
inline constexpr std::string_view shortcutPrefix = "KeyboardShortcuts_";

}  // namespace preference

struct Preference {
    std::string_view key;
    PreferenceType type;
};

inline constexpr std::array allPreferences{
    Preference{preference::targetLanguage, PreferenceType::string},
    Preference{preference::apiStandard, PreferenceType::string},
    Preference{preference::connectionURL, PreferenceType::string},
    Preference{preference::model, PreferenceType::string},
    Preference{preference::maxOutputTokens, PreferenceType::integer},
    Preference{preference::legacyAPIKey, PreferenceType::string},
    Preference{preference::translationPrompt, PreferenceType::string},
    Preference{preference::explanationPrompt, PreferenceType::string},
    Preference{preference::launchAtLogin, PreferenceType::boolean},
    Preference{preference::appearanceMode, PreferenceType::string},
    Preference{preference::entranceIconStyle, PreferenceType::string},
    Preference{preference::resultWindowAlwaysOnTop, PreferenceType::boolean},
    Preference{preference::didDismissWelcome, PreferenceType::boolean},
    Preference{preference::didMigratePrimaryDefaultShortcuts, PreferenceType::boolean},
    Preference{preference::didMigrateRetiredDefaultShortcuts, PreferenceType::boolean},
};

// None for a key that nothing in the program reads.
constexpr std::optional<PreferenceType> preferenceType(std::string_view key) {
    for (const Preference& known : allPreferences) {
        if (known.key == key) return known.type;
    }
    if (key.starts_with(preference::shortcutPrefix)) return PreferenceType::string;
    return std::nullopt;
}

}  // namespace ovrin
