#include "platform/linux/desktop/autostart_login_item.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

#include <glib.h>
#include <unistd.h>

#include "base/error.h"
#include "base/files.h"
#include "base/user_directories.h"
#include "platform/linux/desktop/application_name.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

constexpr const char* group = "Desktop Entry";
constexpr const char* hidden = "Hidden";
constexpr const char* gnomeSwitch = "X-GNOME-Autostart-enabled";
constexpr const char* tryExec = "TryExec";

// Far above any entry that a program could mean.
constexpr std::size_t maximumEntryBytes = std::size_t{256} * 1024;

// The group of a desktop entry that says what is started.
class DesktopEntry {
public:
    DesktopEntry() : file_(g_key_file_new()) {}

    // False when there is no such file or it is no desktop entry.
    bool load(const fs::path& path) {
        std::string text;
        try {
            text = files::readFile(path, maximumEntryBytes);
        } catch (const files::FileError&) {
            return false;
        }
        const auto flags = static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
        return g_key_file_load_from_data(file_.get(), text.c_str(), text.size(), flags, nullptr) != FALSE &&
               g_key_file_has_group(file_.get(), group) != FALSE;
    }

    bool has(const char* key) const { return g_key_file_has_key(file_.get(), group, key, nullptr) != FALSE; }
    bool isTrue(const char* key) const { return g_key_file_get_boolean(file_.get(), group, key, nullptr) != FALSE; }
    // Empty when there is none.
    std::string text(const char* key) const {
        const std::unique_ptr<gchar, decltype(&g_free)> value(g_key_file_get_string(file_.get(), group, key, nullptr),
                                                              g_free);
        return value ? value.get() : "";
    }

    void set(const char* key, const std::string& value) {
        g_key_file_set_string(file_.get(), group, key, value.c_str());
    }
    void setIfMissing(const char* key, const std::string& value) {
        if (!has(key)) set(key, value);
    }
    void remove(const char* key) { g_key_file_remove_key(file_.get(), group, key, nullptr); }

    void save(const fs::path& path) const {
        gsize length = 0;
        const std::unique_ptr<gchar, decltype(&g_free)> bytes(g_key_file_to_data(file_.get(), &length, nullptr),
                                                              g_free);
        files::makeDirectories(path.parent_path());
        files::replaceFile(path, std::string_view(bytes.get(), length), files::Access::everyone);
    }

private:
    struct Deleter {
        void operator()(GKeyFile* file) const { g_key_file_unref(file); }
    };

    std::unique_ptr<GKeyFile, Deleter> file_;
};

fs::path entryIn(const fs::path& folder) {
    return folder / "autostart" / (std::string(applicationId) + ".desktop");
}

// The absolute paths of a list with colons.
std::vector<fs::path> absolutePaths(std::string_view list) {
    std::vector<fs::path> paths;
    while (!list.empty()) {
        const fs::path path(list.substr(0, list.find(':')));
        if (path.is_absolute()) paths.push_back(path);
        list.remove_prefix(std::min(path.native().size() + 1, list.size()));
    }
    return paths;
}

bool isExecutable(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && ::access(path.c_str(), X_OK) == 0;
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

// A word of the key Exec (Desktop Entry Specification, "The Exec key"): in quotes whatever it holds, because some
// desktops split at more than the characters that are reserved there.
std::string quoted(const std::string& word) {
    std::string text = "\"";
    for (const char character : word) {
        if (std::string_view("\"`$\\").find(character) != std::string_view::npos) text += '\\';
        if (character == '%') text += '%';
        text += character;
    }
    return text + "\"";
}

// Does work on the entries; what it fails with says first what could not be done.
template <typename Work>
void change(const Work& work) {
    try {
        work();
    } catch (const files::FileError& error) {
        throw Error("无法更改登录时启动：" + error.errorDescription());
    }
}

}  // namespace

AutostartLoginItem::AutostartLoginItem(const Environment& environment, fs::path executable)
    : ownEntry_(entryIn(userConfigurationDirectory(environment))),
      searchPath_(absolutePaths(environment.value("PATH").value_or(""))),
      executable_(std::move(executable)) {
    for (const fs::path& folder : absolutePaths(environment.value("XDG_CONFIG_DIRS").value_or("/etc/xdg"))) {
        sharedEntries_.push_back(entryIn(folder));
    }
}

bool AutostartLoginItem::isEnabled() const {
    return isEnabled(isThere(ownEntry_) ? ownEntry_ : sharedEntry());
}

bool AutostartLoginItem::isEnabled(const fs::path& entry) const {
    DesktopEntry desktopEntry;
    if (entry.empty() || !desktopEntry.load(entry)) return false;
    if (desktopEntry.isTrue(hidden) || desktopEntry.text("Exec").empty()) return false;
    if (desktopEntry.has(gnomeSwitch) && !desktopEntry.isTrue(gnomeSwitch)) return false;
    const fs::path needed = desktopEntry.text(tryExec);
    return needed.empty() || isExecutable(needed.is_absolute() ? needed : found(needed));
}

void AutostartLoginItem::registerItem() {
    change([this] {
        DesktopEntry entry;
        if (!entry.load(ownEntry_)) files::keepAside(ownEntry_);
        const std::string started = program();
        entry.set("Type", "Application");
        entry.setIfMissing("Name", "Ovrin");
        entry.setIfMissing("Icon", applicationId);
        entry.set("Exec", (started == executable_ ? quoted(started) : started) + " --autostart");
        entry.set(tryExec, started);
        entry.remove(hidden);
        entry.remove(gnomeSwitch);
        entry.save(ownEntry_);
    });
}

void AutostartLoginItem::unregisterItem() {
    change([this] {
        if (!isEnabled(sharedEntry())) {
            std::error_code failure;
            fs::remove(ownEntry_, failure);
            if (failure) throw files::FileError(ownEntry_, failure.value());
            return;
        }
        DesktopEntry entry;
        entry.load(ownEntry_);
        entry.setIfMissing("Type", "Application");
        entry.setIfMissing("Name", "Ovrin");
        entry.set(hidden, "true");
        entry.save(ownEntry_);
    });
}

fs::path AutostartLoginItem::sharedEntry() const {
    for (const fs::path& entry : sharedEntries_) {
        if (isThere(entry)) return entry;
    }
    return {};
}

fs::path AutostartLoginItem::found(const fs::path& program) const {
    for (const fs::path& folder : searchPath_) {
        if (isExecutable(folder / program)) return folder / program;
    }
    return {};
}

fs::path AutostartLoginItem::program() const {
    std::error_code ignored;
    const bool isFound = fs::equivalent(found(executable_.filename()), executable_, ignored);
    return isFound ? executable_.filename() : executable_;
}

}  // namespace ovrin
