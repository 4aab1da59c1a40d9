#include "platform/linux/desktop/kde_system_shortcuts.h"

#include <fstream>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/desktop/accelerator.h"

namespace ovrin {

namespace {

constexpr std::string_view separatorOfAlternatives = "\\t";

// A line is: action=current,default,description. Several combinations of one action are parted by a written-out tab.
std::string_view currentBindings(std::string_view line) {
    const auto equals = line.find('=');
    if (line.starts_with('[') || equals == std::string_view::npos) return {};
    line.remove_prefix(equals + 1);
    return line.substr(0, line.find(','));
}

}  // namespace

KdeSystemShortcuts::KdeSystemShortcuts(std::filesystem::path file, const KeyboardLayout& layout)
    : file_(std::move(file)), layout_(layout) {}

std::vector<KeyboardShortcuts::Shortcut> KdeSystemShortcuts::enabledShortcuts() const {
    std::vector<KeyboardShortcuts::Shortcut> shortcuts;
    const auto layout = layout_.snapshot();
    std::ifstream file(file_);
    for (std::string line; std::getline(file, line);) {
        auto bindings = currentBindings(line);
        while (!bindings.empty()) {
            const auto end = bindings.find(separatorOfAlternatives);
            if (const auto shortcut = parsePlusAccelerator(bindings.substr(0, end), *layout)) {
                shortcuts.push_back(*shortcut);
            }
            bindings = end == std::string_view::npos ? std::string_view{}
                                                     : bindings.substr(end + separatorOfAlternatives.size());
        }
    }
    return shortcuts;
}

}  // namespace ovrin
