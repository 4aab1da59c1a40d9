// The pages of the settings window, in the order of its sidebar.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ovrin {

enum class SettingsSection : std::uint8_t { general, service, shortcuts, advanced, about };

inline constexpr std::array<SettingsSection, 5> allSettingsSections{SettingsSection::general, SettingsSection::service,
                                                                    SettingsSection::shortcuts,
                                                                    SettingsSection::advanced, SettingsSection::about};

// What the sidebar and the head of the page call it.
std::string_view title(SettingsSection section);

// What the page is for, below its title.
std::string_view subtitle(SettingsSection section);

// What the command line calls it, such as "service".
std::string_view commandName(SettingsSection section);

// None for a name that stands for no page.
std::optional<SettingsSection> settingsSection(std::string_view commandName);

}  // namespace ovrin
