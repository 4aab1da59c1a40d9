#include "views/settings/shortcuts_page.h"

#include <QAccessible>
#include <QApplication>
#include <set>

#include "shortcuts/shortcut_fixture.h"
#include "views/shortcut_recorder/recorder.h"

namespace ovrin {
namespace {

using KeyboardShortcuts::Recorder;

class NoSystemShortcuts final : public SystemShortcuts {
public:
    std::vector<KeyboardShortcuts::Shortcut> enabledShortcuts() const override { return {}; }
};

class ShortcutsPageViewTest : public ShortcutTest {
protected:
    void SetUp() override {
        for (const auto shortcut : allOvShortcuts) registry.add(name(shortcut));
        page.resize(620, 500);
        page.show();
        QApplication::processEvents();
    }
    static QString description(QWidget& widget) {
        return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Description);
    }

    NoSystemShortcuts systemShortcuts;
    ViewEnvironment environment;
    ShortcutsPageViewModel viewModel{
        registry, {.systemShortcuts = systemShortcuts, .hotKeys = hotKeys, .menuItemUsing = [](const auto&) {
                       return std::nullopt;
                   }}};
    ShortcutsPage page{environment, layout, viewModel};
};

TEST_F(ShortcutsPageViewTest, TabComesToEveryRecorderInOrderUnderTheTitleOfItsRow) {
    const auto recorders = page.findChildren<Recorder*>();
    ASSERT_EQ(recorders.size(), 13);
    std::vector<std::string> names;
    const QWidget* widget = recorders[0];
    for (std::size_t step = 0; step < 16; ++step) {  // three rows have a button that clears them
        names.push_back(widget->accessibleName().toStdString());
        do {
            widget = widget->nextInFocusChain();
        } while (!widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0);
    }
    std::vector<std::string> expected;
    for (const auto shortcut : allOvShortcuts) {
        expected.emplace_back(title(shortcut));
        if (registry.getShortcut(name(shortcut))) expected.push_back("清除“" + expected.back() + "”的快捷键");
    }
    EXPECT_EQ(names, expected);
    EXPECT_EQ(std::set(names.begin(), names.end()).size(), names.size());
}

TEST_F(ShortcutsPageViewTest, ARefusalIsReadOutUntilItIsOver) {
    auto& recorder = *page.findChildren<Recorder*>().at(static_cast<int>(OvShortcut::captureTranslate));
    hotKeys.takenByOthers.insert(commandShiftT);
    registry.onKeyDown(name(OvShortcut::captureTranslate), [] {});
    EXPECT_TRUE(description(recorder).startsWith("Super+Shift+T\ntaken"));
    hotKeys.takenByOthers.clear();
    QEvent comeBack(QEvent::WindowActivate);
    QApplication::sendEvent(&page, &comeBack);
    EXPECT_FALSE(description(recorder).contains("taken"));
}

}  // namespace
}  // namespace ovrin
