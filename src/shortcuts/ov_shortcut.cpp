#include "shortcuts/ov_shortcut.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

namespace ovrin {

namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Shortcut;

struct Definition {
    std::string_view name;
    std::string_view title;
    std::optional<Shortcut> defaultShortcut{};
};

constexpr Modifiers commandShift = Modifiers::command | Modifiers::shift;

constexpr std::array<Definition, allOvShortcuts.size()> definitions{{
    {.name = "ovrin.captureOCR", .title = "截图 OCR"},
    {.name = "ovrin.captureTranslate", .title = "截图翻译", .defaultShortcut = Shortcut(Key::t, commandShift)},
    {.name = "ovrin.askWhatIsThis", .title = "截图问 AI", .defaultShortcut = Shortcut(Key::s, commandShift)},
    {.name = "ovrin.directAskAI", .title = "TalkBox", .defaultShortcut = Shortcut(Key::w, commandShift)},
    {.name = "ovrin.inputTranslate", .title = "输入翻译"},
    {.name = "ovrin.selectionTranslate", .title = "划词翻译"},
    {.name = "ovrin.silentSelectionTranslate", .title = "静默划词翻译"},
    {.name = "ovrin.silentInputTranslate", .title = "替换选中文字"},
    {.name = "ovrin.silentCaptureOCR", .title = "静默截图 OCR"},
    {.name = "ovrin.clipboardOCR", .title = "剪贴板 OCR"},
    {.name = "ovrin.clipboardTranslate", .title = "剪贴板翻译"},
    {.name = "ovrin.showResultWindow", .title = "显示上次结果"},
    {.name = "ovrin.commandPalette", .title = "命令面板"},
}};

const Definition& definition(OvShortcut shortcut) {
    return definitions.at(static_cast<std::size_t>(shortcut));
}

}  // namespace

KeyboardShortcuts::Name name(OvShortcut shortcut) {
    const auto& found = definition(shortcut);
    return {.rawValue = std::string(found.name), .defaultShortcut = found.defaultShortcut};
}

std::string_view title(OvShortcut shortcut) {
    return definition(shortcut).title;
}

std::vector<KeyboardShortcuts::Name> allOvShortcutNames() {
    std::vector<KeyboardShortcuts::Name> names;
    std::transform(allOvShortcuts.begin(), allOvShortcuts.end(), std::back_inserter(names), name);
    return names;
}

}  // namespace ovrin
