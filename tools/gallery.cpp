// Shows every component of the program on one page, for the eye: ovrin_gallery [light|dark] [PICTURE.png]
// With a picture file it draws the page into that and ends.
#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <memory>
#include <vector>

#include "platform/linux/desktop/desktop_system_shortcuts.h"
#include "platform/linux/qt/font_rendering.h"
#include "platform/linux/qt/qt_main_loop.h"
#include "platform/linux/x11/x11_hot_keys.h"
#include "platform/linux/x11/x11_keyboard_layout.h"
#include "shortcuts/ov_shortcut.h"
#include "storage/defaults_store.h"
#include "views/components/drawing.h"
#include "views/components/ov_animated_icon.h"
#include "views/components/ov_button.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_picker.h"
#include "views/components/ov_pixel_loader.h"
#include "views/components/ov_status_pill.h"
#include "views/components/ov_surface.h"
#include "views/components/ov_text_field.h"
#include "views/components/ov_window_background.h"
#include "views/shortcut_recorder/recorder.h"

using namespace ovrin;
using theme::ColorToken;

namespace {

QLabel* text(ViewEnvironment& environment, const QString& words, const theme::FontStyle& style, ColorToken token) {
    auto* label = new QLabel(words);
    label->setFont(toQFont(style));
    QPalette colors;
    colors.setColor(QPalette::WindowText, environment.color(token));
    label->setPalette(colors);
    return label;
}

template <typename... Widgets>
QHBoxLayout* row(Widgets*... widgets) {
    auto* layout = new QHBoxLayout;
    layout->setSpacing(10);
    (layout->addWidget(widgets), ...);
    layout->addStretch();
    return layout;
}

// Recorders that work, with preferences that are gone with the page.
class Recorders {
public:
    explicit Recorders(ViewEnvironment& environment) : environment_(environment) {}

    KeyboardShortcuts::Recorder* recorder(OvShortcut shortcut) {
        registry_.add(name(shortcut));
        viewModels_.push_back(std::make_unique<KeyboardShortcuts::RecorderViewModel>(
            registry_, name(shortcut),
            KeyboardShortcuts::RecorderRules{
                .systemShortcuts = *systemShortcuts_,
                .hotKeys = hotKeys_,
                .menuItemUsing = [](const KeyboardShortcuts::Shortcut&) { return std::nullopt; }}));
        return new KeyboardShortcuts::Recorder(environment_, layout_, *viewModels_.back(), toQString(title(shortcut)));
    }

private:
    ViewEnvironment& environment_;
    QtMainLoop loop_;
    QTemporaryDir folder_;
    DefaultsStore defaults_{folder_.filePath("preferences.json").toStdString()};
    X11HotKeys hotKeys_{loop_, nullptr};
    X11KeyboardLayout layout_{nullptr};
    std::unique_ptr<SystemShortcuts> systemShortcuts_ = makeDesktopSystemShortcuts(Environment::ofProcess(), layout_);
    KeyboardShortcuts::Registry registry_{defaults_, hotKeys_, layout_,
                                          [](const std::string& line) { qInfo("%s", line.c_str()); }};
    std::vector<std::unique_ptr<KeyboardShortcuts::RecorderViewModel>> viewModels_;
};

void fill(ViewEnvironment& environment, Recorders& recorders, QVBoxLayout& page) {
    using enum OVButton::Kind;
    const auto button = [&](const QString& words, OVButton::Kind kind, OVButton::Density density) {
        return new OVButton(environment, words, kind, density);
    };
    page.addWidget(text(environment, "让知识触手可及 Ovrin", theme::font::title, ColorToken::ink));
    page.addWidget(text(environment, "识别结果 Headline", theme::font::headline, ColorToken::ink));
    page.addWidget(text(environment, "正文：骨、直、角、门都用简体字形。 Body text with “quotes” 0123",
                        theme::font::body, ColorToken::ink2));
    page.addWidget(text(environment, "说明文字 Caption 12:30", theme::font::caption, ColorToken::ink3));
    for (const auto density : {OVButton::Density::regular, OVButton::Density::compact}) {
        page.addLayout(row(button("翻译", primary, density), button("复制", secondary, density),
                           button("朗读", ghost, density), button("清除对话", danger, density)));
    }
    auto* withIcon = button("问问 AI", secondary, OVButton::Density::compact);
    withIcon->setOVIcon(OVIcon::sparkles);
    auto* disabled = button("发送", primary, OVButton::Density::regular);
    disabled->setEnabled(false);
    page.addLayout(row(withIcon, disabled, new OVIconButton(environment, OVIcon::close, "关闭"),
                       new OVIconButton(environment, OVIcon::copy, "复制"),
                       new OVPixelLoader(environment, ColorToken::accentInk)));
    using enum OVStatusPill::Kind;
    page.addLayout(row(new OVStatusPill(environment, "未配置", neutral),
                       new OVStatusPill(environment, "翻译中", active),
                       new OVStatusPill(environment, "已连接", success), new OVStatusPill(environment, "限流", warning),
                       new OVStatusPill(environment, "失败", error)));
    auto* failure = new OVErrorNote(environment);
    failure->setMessage("请求失败（401）：Incorrect API key provided: " + std::string(156, '*') + "。");
    page.addWidget(failure);
    auto* field = new OVTextField(environment, "搜索命令…");
    field->setLeadingIcon(OVIcon::search);
    page.addWidget(field);
    auto* picker = new OVPicker(environment, "目标语言", {{"zh-Hans", "简体中文"}, {"en", "English"}});
    picker->setCurrent({.value = "en", .title = "English"});
    page.addLayout(row(picker));
    page.addLayout(row(recorders.recorder(OvShortcut::captureTranslate), recorders.recorder(OvShortcut::captureOCR)));

    auto* card = new OVSurface(environment, 14, OVSurface::Elevation::elevated);
    auto* grid = new QGridLayout(card);
    for (int i = 0; i < OVIcon::count; ++i) {
        grid->addWidget(new OVAnimatedIcon(environment, static_cast<OVIcon::Case>(i), 16, ColorToken::ink2,
                                           OVAnimatedIcon::Hover::animates),
                        i / 11, i % 11);
    }
    page.addWidget(card);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    drawOutlinesAsDesigned();
    const QStringList arguments = QApplication::arguments();
    ViewEnvironment environment;
    environment.setSettings(
        {.appearance = arguments.value(1) == "dark" ? theme::Appearance::dark : theme::Appearance::light});
    Recorders recorders(environment);
    OVWindowBackground window(environment, 0);
    window.resize(520, 660);
    QVBoxLayout page(&window);
    page.setContentsMargins(28, 24, 28, 24);
    page.setSpacing(14);
    fill(environment, recorders, page);
    window.show();
    if (arguments.size() < 3) return QApplication::exec();
    QApplication::processEvents();
    return window.grab().save(arguments.value(2)) ? 0 : 1;
}
