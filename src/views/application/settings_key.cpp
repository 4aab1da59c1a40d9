#include "views/application/settings_key.h"

#include <QApplication>
#include <QEvent>
#include <QShortcut>
#include <QWidget>
#include <utility>

#include "platform/linux/qt/recent_windows.h"

namespace ovrin {

namespace {

constexpr auto shortcutName = "settings key";

// Questions are to be answered first.
bool takesSettingsKey(const QWidget& window) {
    return isWorkedIn(window) && !window.isModal();
}

}  // namespace

SettingsKey::SettingsKey(std::function<void()> showSettings) : showSettings_(std::move(showSettings)) {
    qApp->installEventFilter(this);
}

// A shortcut of each window, rather than a look at every key: what has the keyboard, such as a field that records a
// combination, may claim the key for itself.
bool SettingsKey::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto& widget = static_cast<QWidget&>(*watched);
        const bool isNew =
            widget.findChild<QShortcut*>(QLatin1String(shortcutName), Qt::FindDirectChildrenOnly) == nullptr;
        if (widget.isWindow() && takesSettingsKey(widget) && isNew) {
            auto* shortcut = new QShortcut(Qt::CTRL | Qt::Key_Comma, &widget);
            shortcut->setObjectName(QLatin1String(shortcutName));
            connect(shortcut, &QShortcut::activated, this, [this] { showSettings_(); });
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace ovrin
