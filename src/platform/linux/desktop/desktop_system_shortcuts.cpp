#include "platform/linux/desktop/desktop_system_shortcuts.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/desktop/gsettings_system_shortcuts.h"
#include "platform/linux/desktop/kde_system_shortcuts.h"

namespace ovrin {

namespace {

struct Desktop {
    std::string_view name;  // an element of XDG_CURRENT_DESKTOP
    std::vector<std::string> schemas;
};

std::vector<Desktop> desktopsWithGSettings() {
    return {
        {"X-Cinnamon", {"org.cinnamon.desktop.keybindings.wm", "org.cinnamon.desktop.keybindings.media-keys"}},
        {"MATE",
         {"org.mate.Marco.global-keybindings", "org.mate.Marco.window-keybindings",
          "org.mate.SettingsDaemon.plugins.media-keys"}},
        {"GNOME",
         {"org.gnome.desktop.wm.keybindings", "org.gnome.mutter.keybindings", "org.gnome.mutter.wayland.keybindings",
          "org.gnome.shell.keybindings", "org.gnome.settings-daemon.plugins.media-keys"}},
    };
}

bool holds(std::string_view list, std::string_view element) {
    while (!list.empty()) {
        const auto end = list.find(':');
        if (list.substr(0, end) == element) return true;
        list = end == std::string_view::npos ? std::string_view{} : list.substr(end + 1);
    }
    return false;
}

std::filesystem::path configurationDirectory(const Environment& environment) {
    if (const auto directory = environment.value("XDG_CONFIG_HOME")) return *directory;
    return std::filesystem::path(environment.value("HOME").value_or("/")) / ".config";
}

}  // namespace

std::unique_ptr<SystemShortcuts> makeDesktopSystemShortcuts(const Environment& environment,
                                                            const KeyboardLayout& layout) {
    const auto current = environment.value("XDG_CURRENT_DESKTOP").value_or("");
    if (holds(current, "KDE")) {
        return std::make_unique<KdeSystemShortcuts>(configurationDirectory(environment) / "kglobalshortcutsrc", layout);
    }
    for (const auto& desktop : desktopsWithGSettings()) {
        if (holds(current, desktop.name)) return std::make_unique<GSettingsSystemShortcuts>(desktop.schemas, layout);
    }
    return std::make_unique<GSettingsSystemShortcuts>(std::vector<std::string>{}, layout);
}

}  // namespace ovrin
