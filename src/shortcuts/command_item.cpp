#include "shortcuts/command_item.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "shortcuts/ov_shortcut.h"

namespace ovrin {

namespace {

struct Definition {
    std::string_view title;
    std::string_view subtitle;
    std::string_view symbolName;
    OvShortcut shortcut;
};

constexpr auto definitions = std::to_array<Definition>({
    {"截图 OCR", "框选屏幕区域并识别文字", "viewfinder", OvShortcut::captureOCR},
    {"截图翻译", "识别并立即流式翻译", "rectangle.and.text.magnifyingglass", OvShortcut::captureTranslate},
    {"截图问 AI", "框选屏幕内容并与 AI 对话", "questionmark.bubble", OvShortcut::askWhatIsThis},
    {"TalkBox", "直接打开 AI 对话框", "sparkles", OvShortcut::directAskAI},
    {"输入翻译", "打开双栏快速翻译窗口", "character.cursor.ibeam", OvShortcut::inputTranslate},
    {"划词翻译", "翻译其他应用中选中的文字", "selection.pin.in.out", OvShortcut::selectionTranslate},
    {"静默划词翻译", "在鼠标旁显示轻量译文卡片", "rectangle.on.rectangle", OvShortcut::silentSelectionTranslate},
    {"替换为译文", "在当前输入框中原地替换", "arrow.triangle.2.circlepath", OvShortcut::silentInputTranslate},
    {"静默截图 OCR", "识别后直接复制并发送通知", "viewfinder", OvShortcut::silentCaptureOCR},
    {"剪贴板 OCR", "识别剪贴板中的图片", "doc.on.clipboard", OvShortcut::clipboardOCR},
    {"剪贴板翻译", "翻译剪贴板文本或图片", "character.book.closed", OvShortcut::clipboardTranslate},
    {"显示上次结果", "重新打开最近的结果面板", "clock.arrow.circlepath", OvShortcut::showResultWindow},
});

}  // namespace

std::vector<CommandItem> CommandItem::defaultItems(AssistantActions& actions,
                                                   const KeyboardShortcuts::Registry& registry) {
    std::vector<CommandItem> items;
    std::transform(definitions.begin(), definitions.end(), std::back_inserter(items),
                   [&](const Definition& definition) {
                       return CommandItem{
                           .id = std::string(commandName(definition.shortcut)),
                           .title = std::string(definition.title),
                           .subtitle = std::string(definition.subtitle),
                           .symbolName = std::string(definition.symbolName),
                           .shortcutDisplay = registry.shortcutDisplay(name(definition.shortcut)),
                           .action = [shortcut = definition.shortcut, &actions] { perform(shortcut, actions); },
                       };
                   });
    return items;
}

}  // namespace ovrin
