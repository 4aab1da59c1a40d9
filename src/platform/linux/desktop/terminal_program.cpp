#include "platform/linux/desktop/terminal_program.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/text.h"

namespace ovrin {

// Most terminals have the word in their class ("gnome-terminal-server", "xterm"); of others the whole class, in lower
// case, or the last part of a class that is an application id.
bool isTerminalProgram(std::string_view name) {
    constexpr std::array names{
        "alacritty", "blackbox",   "console",     "contour", "foot",  "footclient", "ghostty", "guake",  "hyper",
        "kgx",       "kitty",      "konsole",     "ptyxis",  "rio",   "rxvt",       "sakura",  "st",     "st-256color",
        "tabby",     "terminator", "terminology", "tilda",   "tilix", "urxvt",      "warp",    "yakuake"};
    const std::string lowercased = text::asciiLowercased(name);
    const std::string_view last = std::string_view(lowercased).substr(lowercased.rfind('.') + 1);
    return last.ends_with("term") || last.find("terminal") != std::string_view::npos ||
           std::ranges::find(names, last) != names.end();
}

}  // namespace ovrin
