#include "platform/linux/qt/recent_windows.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>

namespace ovrin {

bool isWorkedIn(const QWidget& window) {
    const bool isOrdinary = window.windowType() == Qt::Window || window.windowType() == Qt::Tool;
    const bool isManaged = !window.windowFlags().testFlag(Qt::BypassWindowManagerHint);
    return isOrdinary && isManaged;
}

RecentWindows::RecentWindows() {
    QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &listener_, [this](QWindow* window) {
        used_.removeIf([window](const QPointer<QWindow>& known) { return known.isNull() || known == window; });
        if (window != nullptr) used_.append(window);
    });
}

QWindow* RecentWindows::lastUsed() const {
    QWindow* last = nullptr;
    qsizetype lastPlace = -2;  // below that of a window that never had the keyboard
    for (const QWidget* const window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() || !isWorkedIn(*window)) continue;
        const qsizetype place = used_.lastIndexOf(window->windowHandle());
        if (place > lastPlace) {
            last = window->windowHandle();
            lastPlace = place;
        }
    }
    return last;
}

}  // namespace ovrin
