#include "views/application/settings_key.h"

#include <QApplication>
#include <QEvent>
#include <QShortcut>
#include <QWidget>
#include <utility>

namespace ovrin {

namespace {

constexpr auto shortcutName = "settings key";

// Windows that the user works in: not toasts, menus and overlays, nor questions, which are to be answered first.
bool isWorkedIn(const QWidget& window) {
    const bool isOrdinary = window.windowType() == Qt::Window || window.windowType() == Qt::Tool;
    const bool isManaged = !window.windowFlags().testFlag(Qt::BypassWindowManagerHint);
    return isOrdinary && isManaged && !window.isModal();
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
        if (widget.isWindow() && isWorkedIn(widget) && isNew) {
            auto* shortcut = new QShortcut(Qt::CTRL | Qt::Key_Comma, &widget);
            shortcut->setObjectName(QLatin1String(shortcutName));
            connect(shortcut, &QShortcut::activated, this, [this] { showSettings_(); });
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace ovrin
