#include <QAccessible>
#include <QAnimationDriver>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRadioButton>
#include <QTextEdit>
#include <QWheelEvent>
#include <chrono>
#include <memory>
#include <set>

#include <gtest/gtest.h>

#include "fakes/fake_application_actions.h"
#include "fakes/fake_synthetic_keyboard.h"
#include "model/recorded_answers.h"
#include "settings/settings_fixture.h"
#include "settings/settings_view_model.h"
#include "storage/history_store.h"
#include "views/components/ov_page_stack.h"
#include "views/components/ov_secure_field.h"
#include "views/components/ov_text_field.h"
#include "views/settings/qt_settings_window.h"
#include "views/settings/settings_page.h"

namespace ovrin {
namespace {

class SettingsWindowTest : public SettingsTest {
protected:
    SettingsWindowTest() {
        settle();
        window.present();
        viewModel.store().addHeader();
        viewModel.store().addHeader();
        viewModel.store().editMaxOutputTokens("many");
        show(SettingsSection::general);
        journal.take();
    }

    void show(SettingsSection section) {
        viewModel.select(section);
        QApplication::processEvents();
    }
    OVPageStack& pages() { return *window.findChild<OVPageStack*>(); }
    QWidget& named(const QString& name) {
        for (QWidget* const widget : window.findChildren<QWidget*>()) {
            const auto* const button = qobject_cast<QAbstractButton*>(widget);
            const bool isCalledSo = widget->accessibleName() == name || (button != nullptr && button->text() == name);
            if (isCalledSo && widget->isVisible()) return *widget;
        }
        throw Error("nothing is called " + name.toStdString());
    }
    static void press(QWidget& widget, int key) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &up);
    }

    FakeSyntheticKeyboard keyboard{journal};
    FakeApplicationActions actions{journal};
    HistoryStore history{directory.path() / "history.json", text::caseRules(Environment(variables)),
                         std::chrono::system_clock::now};
    ViewEnvironment environment;
    std::vector<Capability> capabilities;  // of the session
    SettingsViewModel viewModel{{.store = surroundings(),
                                 .keyboard = keyboard,
                                 .inspectSession = [this](const std::stop_token&) { return capabilities; },
                                 .inspectionWorker = worker,
                                 .history = history,
                                 .application = actions,
                                 .version = "1"}};
    QtSettingsWindow window{environment, icons.image(), viewModel, new SettingsPage(environment, "快捷键", {})};
};

TEST_F(SettingsWindowTest, TabReachesAFoundServiceAboveWhatItFillsIn) {
    http.willAnswer({.chunks = {std::string(recorded::ollamaModels)}});
    for (int port = 0; port < 3; ++port) http.willAnswer({.chunks = {"<html>"}});
    show(SettingsSection::service);
    loop.advance(std::chrono::seconds(1));
    QApplication::processEvents();
    QWidget& found = named("使用 Ollama");
    QWidget* next = found.nextInFocusChain();
    while (next->focusPolicy() == Qt::NoFocus || !next->isVisible()) next = next->nextInFocusChain();
    EXPECT_EQ(next, &named("OpenAI 兼容"));
}

TEST_F(SettingsWindowTest, TheAdvancedPageSaysWhatTheSessionCanDoEachTimeItComesUp) {
    const auto shown = [this](const QString& name) {
        show(SettingsSection::general);
        show(SettingsSection::advanced);
        settle();
        QApplication::processEvents();
        return named(name).accessibleDescription();
    };
    capabilities = {
        {.name = "capture", .title = "截图", .isAvailable = true, .detail = "X11", .note = "X11"},
        {.name = "tray", .title = "系统托盘", .detail = "no panel shows the tray", .note = "当前桌面没有系统托盘"}};
    EXPECT_EQ(shown("截图：可用"), "X11");
    EXPECT_EQ(shown("系统托盘：不可用"), "当前桌面没有系统托盘");
    capabilities[1] = {.name = "tray", .title = "系统托盘", .isAvailable = true, .detail = "item", .note = "item"};
    EXPECT_EQ(shown("系统托盘：可用"), "item");
}

// What every control of the page says of itself.
QString values(const QWidget& page) {
    QString all;
    for (const QLineEdit* const field : page.findChildren<QLineEdit*>()) all += field->text() + '\n';
    for (const QTextEdit* const editor : page.findChildren<QTextEdit*>()) all += editor->toPlainText() + '\n';
    for (const QAbstractButton* const button : page.findChildren<QAbstractButton*>()) {
        all += button->accessibleName() + (button->isChecked() ? " on\n" : "\n");
    }
    return all;
}

TEST_F(SettingsWindowTest, TheWheelChangesNoControl) {
    for (const SettingsSection section : allSettingsSections) {
        show(section);
        const QString before = values(window);
        for (QWidget* const widget : pages().currentPage()->findChildren<QWidget*>()) {
            if (widget->focusPolicy() == Qt::NoFocus) continue;
            widget->setFocus();
            for (const int turn : {120, -120, -120}) {
                QWheelEvent wheel({2, 2}, widget->mapToGlobal(QPointF(2, 2)), {}, {0, turn}, Qt::NoButton,
                                  Qt::NoModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(widget, &wheel);
            }
        }
        EXPECT_EQ(values(window), before);
    }
}

// Time that passes as the test says.
class Steps final : public QAnimationDriver {
public:
    Steps() { install(); }
    void pass(int milliseconds) {
        for (int i = 0; i < milliseconds; i += 10) {
            now_ += 10;
            QApplication::processEvents();  // which starts animations
            advance();
        }
    }
    qint64 elapsed() const override { return now_; }

private:
    qint64 now_ = 0;
};

TEST_F(SettingsWindowTest, QuickChangesEndOnTheLastPageAndReducedMotionOnlyFades) {
    using enum SettingsSection;
    Steps time;
    for (const bool reducesMotion : {false, true}) {
        environment.setSettings({.reducesMotion = reducesMotion});
        bool wasElsewhere = false;
        for (const SettingsSection section : {about, general, shortcuts, service, advanced, service}) {
            viewModel.select(section);
            time.pass(50);
            wasElsewhere = wasElsewhere || pages().currentPage()->y() != 0;
        }
        EXPECT_EQ(wasElsewhere, !reducesMotion);
        time.pass(2000);
        const QWidget* const page = pages().currentPage();
        EXPECT_EQ(page->accessibleName(), "服务");
        EXPECT_EQ(page->geometry(), pages().rect());
        EXPECT_EQ(page->graphicsEffect(), nullptr);
        int shown = 0;
        for (const auto* const other : pages().findChildren<SettingsPage*>(Qt::FindDirectChildrenOnly)) {
            shown += other->isVisible() ? 1 : 0;
        }
        EXPECT_EQ(shown, 1);
        EXPECT_TRUE(dynamic_cast<QRadioButton&>(named("服务")).isChecked());
        viewModel.select(general);
        time.pass(2000);
    }
}

TEST_F(SettingsWindowTest, TheKeyIsHiddenAgainOnceItIsLeftAndHiddenItCannotBeCopied) {
    show(SettingsSection::service);
    auto& secure = *window.findChild<OVSecureField*>();
    QLineEdit& field = secure.field();
    viewModel.store().editAPIKey("sk-secret");
    QGuiApplication::clipboard()->setText("before");
    field.selectAll();
    field.copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "before");

    auto& eye = dynamic_cast<QAbstractButton&>(named("显示 API Key"));
    const auto leaveTo = [](QWidget& other) {
        other.setFocus();
        QApplication::processEvents();
    };
    eye.click();
    EXPECT_TRUE(secure.isShown());
    leaveTo(eye);
    EXPECT_TRUE(secure.isShown()) << "the button belongs to the field";
    leaveTo(named("模型"));
    EXPECT_FALSE(secure.isShown());
    EXPECT_FALSE(eye.isChecked());
    eye.click();
    window.hide();
    EXPECT_FALSE(secure.isShown());
}

TEST_F(SettingsWindowTest, ReturnPressesTheFocusedButtonAndNothingElse) {
    show(SettingsSection::service);
    press(named("连接 URL"), Qt::Key_Return);
    press(named("删除 Header 1"), Qt::Key_Return);
    EXPECT_EQ(viewModel.store().customHeaders().value()->size(), 1U);
    show(SettingsSection::general);
    press(named("登录时启动"), Qt::Key_Return);
    EXPECT_TRUE(viewModel.store().launchAtLogin().value().value());
    EXPECT_TRUE(journal.take().empty()) << "nothing was saved";
    press(named("保存更改"), Qt::Key_Return);
    EXPECT_FALSE(journal.take().empty());
}

// Every element below that the keyboard can come to, in the order in which assistive technology finds them.
void collectFocusable(QAccessibleInterface* element, std::vector<QAccessibleInterface*>& found) {
    const QAccessible::State state = element->state();
    if (state.invisible) return;
    if (state.focusable && !state.disabled) found.push_back(element);
    for (int i = 0; i < element->childCount(); ++i) collectFocusable(element->child(i), found);
}

TEST_F(SettingsWindowTest, AssistiveTechnologyFindsWhatTheKeyboardFindsInTheSameOrder) {
    for (const SettingsSection section : allSettingsSections) {
        show(section);
        std::vector<QAccessibleInterface*> focusable;
        collectFocusable(QAccessible::queryAccessibleInterface(&window), focusable);
        std::erase_if(focusable, [&](const auto* element) { return element->object() == &window; });
        std::set<QString> names;
        for (QAccessibleInterface* const element : focusable) {
            const QString name = element->text(QAccessible::Name);
            EXPECT_FALSE(name.isEmpty()) << element->object()->metaObject()->className();
            EXPECT_TRUE(names.insert(name).second) << name.toStdString() << " is there twice";
            EXPECT_NE(element->role(), QAccessible::Client) << name.toStdString();
            EXPECT_NE(element->role(), QAccessible::NoRole) << name.toStdString();
            const bool hasState =
                element->role() == QAccessible::CheckBox || element->role() == QAccessible::RadioButton;
            EXPECT_TRUE(!hasState || element->state().checkable) << name.toStdString();
        }
        // With the Tab key, once round.
        std::vector<QObject*> visited;
        qobject_cast<QWidget*>(focusable.front()->object())->setFocus();
        do {
            visited.push_back(window.focusWidget());
            press(*window.focusWidget(), Qt::Key_Tab);
        } while (window.focusWidget() != visited.front() && visited.size() < 100);
        std::vector<QObject*> expected;
        for (const QAccessibleInterface* const element : focusable) expected.push_back(element->object());
        EXPECT_EQ(visited, expected) << static_cast<int>(section);
    }
}

}  // namespace
}  // namespace ovrin
