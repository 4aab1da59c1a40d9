#include "views/shortcut_recorder/recorder.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QVBoxLayout>

#include "shortcuts/shortcut_fixture.h"
#include "views/components/ov_button.h"

namespace ovrin {
namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Recorder;
using KeyboardShortcuts::RecorderViewModel;
using KeyboardShortcuts::Shortcut;

constexpr Shortcut systemCombination(Key::d, Modifiers::command);

class TakenCombination final : public SystemShortcuts {
public:
    std::vector<Shortcut> enabledShortcuts() const override { return {systemCombination}; }
};

// The numbers of the events are those of the keys.
class PlainLayout final : public KeyboardLayout {
public:
    std::optional<std::string> character(Key key) const override { return letters.character(key); }
    std::optional<Key> key(std::uint32_t nativeCode) const override { return Key{static_cast<int>(nativeCode)}; }
    std::unique_ptr<const KeyboardLayout> snapshot() const override { return letters.snapshot(); }

private:
    USKeyboardLayout letters;
};

struct RecorderViewTest : ShortcutTest {
    RecorderViewTest() {
        auto* column = new QVBoxLayout(&window);
        for (QWidget* widget : {static_cast<QWidget*>(&recorder), static_cast<QWidget*>(&other)}) {
            column->addWidget(widget);
        }
        window.show();
        window.activateWindow();
        other.setFocus();
        QApplication::processEvents();
    }
    ~RecorderViewTest() override {
        for (QWidget* widget : {static_cast<QWidget*>(&recorder), static_cast<QWidget*>(&other)}) {
            widget->setParent(nullptr);
        }
    }

    static void click(QWidget& widget, const QPointF& place) {
        QMouseEvent press(QEvent::MouseButtonPress, place, widget.mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&widget, &press);
    }
    void clickField() { click(recorder, QRectF(recorder.rect()).center()); }
    void press(Key key, int qtKey, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(QEvent::KeyPress, qtKey, modifiers, static_cast<quint32>(key.rawValue), 0, 0);
        QApplication::sendEvent(&recorder, &event);
    }
    void pressSystemCombination() { press(Key::d, Qt::Key_D, Qt::MetaModifier); }
    OVAlert* alert() const { return window.findChild<OVAlert*>(); }
    static void answer(OVAlert& alert, const QString& title) {
        for (auto* button : alert.findChildren<OVButton*>()) {
            if (button->text() == title) button->click();
        }
        QApplication::sendPostedEvents(&alert, QEvent::DeferredDelete);
    }
    bool hasKeyboard() const { return QWidget::keyboardGrabber() == &recorder; }

    TakenCombination systemShortcuts;
    PlainLayout plainLayout;
    ViewEnvironment environment;
    RecorderViewModel viewModel{
        registry, plain, {.systemShortcuts = systemShortcuts, .hotKeys = hotKeys, .menuItemUsing = [](const Shortcut&) {
                              return std::nullopt;
                          }}};
    QWidget window;
    Recorder recorder{environment, plainLayout, viewModel, "截图翻译"};
    QLineEdit other;
};

TEST_F(RecorderViewTest, RecordsTheNextCombinationAfterAClickAndClearsItByItsButton) {
    clickField();
    EXPECT_TRUE(hasKeyboard());
    press(Key{56}, Qt::Key_Shift, Qt::ShiftModifier);
    press(Key::t, Qt::Key_T, Qt::MetaModifier | Qt::ShiftModifier);
    EXPECT_EQ(registry.getShortcut(plain), commandShiftT);
    EXPECT_FALSE(hasKeyboard());

    const auto* accessible = QAccessible::queryAccessibleInterface(&recorder);
    EXPECT_EQ(accessible->text(QAccessible::Name), "截图翻译");
    EXPECT_EQ(accessible->text(QAccessible::Value), "Super+Shift+T");

    auto* clearButton = recorder.findChild<OVIconButton*>();
    EXPECT_TRUE(clearButton->accessibleName().contains("截图翻译"));
    clearButton->click();
    EXPECT_FALSE(clearButton->isVisible());
    EXPECT_TRUE(recorder.hasFocus());
    EXPECT_FALSE(viewModel.isRecording().value());
    EXPECT_EQ(registry.getShortcut(plain), std::nullopt);
}

TEST_F(RecorderViewTest, WhateverTakesTheUserAwayEndsTheRecording) {
    const auto expectEnd = [this](const char* reason, const std::function<void()>& leave) {
        clickField();
        ASSERT_TRUE(hasKeyboard()) << reason;
        leave();
        EXPECT_FALSE(viewModel.isRecording().value()) << reason;
        EXPECT_FALSE(hasKeyboard()) << reason;
    };
    expectEnd("a click beside it", [this] { click(window, {1, 1}); });
    expectEnd("Tab", [this] {
        recorder.setFocus();
        press(Key{48}, Qt::Key_Tab, Qt::NoModifier);
    });
    expectEnd("Escape", [this] { press(Key::escape, Qt::Key_Escape, Qt::NoModifier); });
    expectEnd("the end of its window", [this] { window.hide(); });
    EXPECT_EQ(registry.getShortcut(plain), std::nullopt);
}

TEST_F(RecorderViewTest, AsksBeforeItTakesACombinationOfTheSystem) {
    clickField();
    pressSystemCombination();
    ASSERT_NE(alert(), nullptr);
    EXPECT_FALSE(hasKeyboard());
    answer(*alert(), "好");
    EXPECT_EQ(alert(), nullptr);
    EXPECT_TRUE(hasKeyboard());
    EXPECT_EQ(registry.getShortcut(plain), std::nullopt);

    pressSystemCombination();
    ASSERT_NE(alert(), nullptr);
    answer(*alert(), "仍然使用");
    EXPECT_EQ(registry.getShortcut(plain), systemCombination);
    EXPECT_FALSE(viewModel.isRecording().value());
    EXPECT_FALSE(hasKeyboard());
}

}  // namespace
}  // namespace ovrin
