// The wishes about looks that GNOME and its relatives keep in GSettings (schema org.gnome.desktop.interface).
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ovrin {

// Thread of GLib's default main context, which must run for changes to be heard of. Where the schema is not installed
// nothing is known and nothing changes.
class GnomeInterfaceSettings {
public:
    explicit GnomeInterfaceSettings(std::function<void()> changed);
    ~GnomeInterfaceSettings();
    GnomeInterfaceSettings(const GnomeInterfaceSettings&) = delete;
    GnomeInterfaceSettings& operator=(const GnomeInterfaceSettings&) = delete;

    std::optional<std::string> colorScheme() const;
    std::optional<std::string> gtkTheme() const;
    std::optional<bool> enablesAnimations() const;

private:
    struct Source;
    std::unique_ptr<Source> source_;
};

}  // namespace ovrin
