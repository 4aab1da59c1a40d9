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
    std::string_view commandName;
    std::optional<Shortcut> defaultShortcut{};
};

constexpr Modifiers commandShift = Modifiers::command | Modifiers::shift;

constexpr std::array<Definition, allOvShortcuts.size()> definitions{{
    {.name = "ovrin.captureOCR", .title = "截图 OCR", .commandName = "capture-ocr"},
    {.name = "ovrin.captureTranslate",
     .title = "截图翻译",
     .commandName = "capture-translate",
     .defaultShortcut = Shortcut(Key::t, commandShift)},
    {.name = "ovrin.askWhatIsThis",
     .title = "截图问 AI",
     .commandName = "what-is-this",
     .defaultShortcut = Shortcut(Key::s, commandShift)},
    {.name = "ovrin.directAskAI",
     .title = "TalkBox",
     .commandName = "direct-ai",
     .defaultShortcut = Shortcut(Key::w, commandShift)},
    {.name = "ovrin.inputTranslate", .title = "输入翻译", .commandName = "input-translate"},
    {.name = "ovrin.selectionTranslate", .title = "划词翻译", .commandName = "selection"},
    {.name = "ovrin.silentSelectionTranslate", .title = "静默划词翻译", .commandName = "silent-selection"},
    {.name = "ovrin.silentInputTranslate", .title = "替换选中文字", .commandName = "replace-selection"},
    {.name = "ovrin.silentCaptureOCR", .title = "静默截图 OCR", .commandName = "silent-capture-ocr"},
    {.name = "ovrin.clipboardOCR", .title = "剪贴板 OCR", .commandName = "clipboard-ocr"},
    {.name = "ovrin.clipboardTranslate", .title = "剪贴板翻译", .commandName = "clipboard-translate"},
    {.name = "ovrin.showResultWindow", .title = "显示上次结果", .commandName = "latest"},
    {.name = "ovrin.commandPalette", .title = "命令面板", .commandName = "command-palette"},
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

std::string_view commandName(OvShortcut shortcut) {
    return definition(shortcut).commandName;
}

std::vector<KeyboardShortcuts::Name> allOvShortcutNames() {
    std::vector<KeyboardShortcuts::Name> names;
    std::transform(allOvShortcuts.begin(), allOvShortcuts.end(), std::back_inserter(names), name);
    return names;
}

}  // namespace ovrin
