#include "shortcuts/action.h"

#include <algorithm>
#include <array>

namespace ovrin {

namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Shortcut;

constexpr Modifiers commandShift = Modifiers::command | Modifiers::shift;

void showLatestResultOrSayThereIsNone(AssistantActions& actions) {
    if (!actions.showLatestResult()) actions.showToast("还没有识别或翻译结果", "clock");
}

constexpr auto descriptions = std::to_array<ActionDescription>({
    {.action = OvShortcut::captureOCR,
     .commandName = "capture-ocr",
     .title = "截图 OCR",
     .subtitle = "框选屏幕区域并识别文字",
     .symbolName = "viewfinder",
     .shortcutName = "ovrin.captureOCR",
     .perform = [](AssistantActions& actions) { actions.captureOCR(); }},
    {.action = OvShortcut::captureTranslate,
     .commandName = "capture-translate",
     .title = "截图翻译",
     .subtitle = "识别并立即流式翻译",
     .symbolName = "rectangle.and.text.magnifyingglass",
     .shortcutName = "ovrin.captureTranslate",
     .defaultShortcut = Shortcut(Key::t, commandShift),
     .perform = [](AssistantActions& actions) { actions.captureTranslate(); }},
    {.action = OvShortcut::askWhatIsThis,
     .commandName = "what-is-this",
     .title = "截图问 AI",
     .subtitle = "框选屏幕内容并与 AI 对话",
     .symbolName = "questionmark.bubble",
     .shortcutName = "ovrin.askWhatIsThis",
     .defaultShortcut = Shortcut(Key::s, commandShift),
     .perform = [](AssistantActions& actions) { actions.captureWhatIsThis(); }},
    {.action = OvShortcut::directAskAI,
     .commandName = "direct-ai",
     .title = "TalkBox",
     .subtitle = "直接打开 AI 对话框",
     .symbolName = "sparkles",
     .shortcutName = "ovrin.directAskAI",
     .defaultShortcut = Shortcut(Key::w, commandShift),
     .perform = [](AssistantActions& actions) { actions.showDirectAI(); }},
    {.action = OvShortcut::inputTranslate,
     .commandName = "input-translate",
     .title = "输入翻译",
     .subtitle = "打开双栏快速翻译窗口",
     .symbolName = "character.cursor.ibeam",
     .shortcutName = "ovrin.inputTranslate",
     .perform = [](AssistantActions& actions) { actions.showInputTranslate(); }},
    {.action = OvShortcut::selectionTranslate,
     .commandName = "selection",
     .title = "划词翻译",
     .subtitle = "翻译其他应用中选中的文字",
     .symbolName = "selection.pin.in.out",
     .shortcutName = "ovrin.selectionTranslate",
     .perform = [](AssistantActions& actions) { actions.selectionTranslate(); }},
    {.action = OvShortcut::silentSelectionTranslate,
     .commandName = "silent-selection",
     .title = "静默划词翻译",
     .subtitle = "在鼠标旁显示轻量译文卡片",
     .symbolName = "rectangle.on.rectangle",
     .shortcutName = "ovrin.silentSelectionTranslate",
     .perform = [](AssistantActions& actions) { actions.silentSelectionTranslate(); }},
    {.action = OvShortcut::silentInputTranslate,
     .commandName = "replace-selection",
     .title = "替换选中文字",
     .commandTitle = "替换为译文",
     .subtitle = "在当前输入框中原地替换",
     .symbolName = "arrow.triangle.2.circlepath",
     .shortcutName = "ovrin.silentInputTranslate",
     .perform = [](AssistantActions& actions) { actions.replaceSelection(); }},
    {.action = OvShortcut::silentCaptureOCR,
     .commandName = "silent-capture-ocr",
     .title = "静默截图 OCR",
     .subtitle = "识别后直接复制并发送通知",
     .symbolName = "viewfinder",
     .shortcutName = "ovrin.silentCaptureOCR",
     .perform = [](AssistantActions& actions) { actions.silentCaptureOCR(); }},
    {.action = OvShortcut::clipboardOCR,
     .commandName = "clipboard-ocr",
     .title = "剪贴板 OCR",
     .subtitle = "识别剪贴板中的图片",
     .symbolName = "doc.on.clipboard",
     .shortcutName = "ovrin.clipboardOCR",
     .perform = [](AssistantActions& actions) { actions.clipboardOCR(); }},
    {.action = OvShortcut::clipboardTranslate,
     .commandName = "clipboard-translate",
     .title = "剪贴板翻译",
     .subtitle = "翻译剪贴板文本或图片",
     .symbolName = "character.book.closed",
     .shortcutName = "ovrin.clipboardTranslate",
     .perform = [](AssistantActions& actions) { actions.clipboardTranslate(); }},
    {.action = OvShortcut::showResultWindow,
     .commandName = "latest",
     .title = "显示上次结果",
     .subtitle = "重新打开最近的结果面板",
     .symbolName = "clock.arrow.circlepath",
     .shortcutName = "ovrin.showResultWindow",
     .perform = showLatestResultOrSayThereIsNone},
    {.action = OvShortcut::commandPalette,
     .commandName = "command-palette",
     .title = "命令面板",
     .symbolName = "command",
     .shortcutName = "ovrin.commandPalette",
     .perform = [](AssistantActions& actions) { actions.showCommandPalette(); }},
    {.action = ApplicationCommand::history, .commandName = "history", .title = "历史记录", .symbolName = "clock"},
    {.action = ApplicationCommand::settings, .commandName = "settings", .title = "设置…", .symbolName = "gearshape"},
    {.action = ApplicationCommand::checkForUpdates,
     .commandName = "check-for-updates",
     .title = "检查更新…",
     .symbolName = "arrow.triangle.2.circlepath"},
    {.action = ApplicationCommand::reload, .commandName = "reload", .title = "重新读取设置"},
    {.action = ApplicationCommand::quit, .commandName = "quit", .title = "退出 Ovrin"},
});

}  // namespace

std::span<const ActionDescription> allActions() {
    return descriptions;
}

const ActionDescription& description(Action action) {
    return *std::ranges::find(descriptions, action, &ActionDescription::action);
}

}  // namespace ovrin
