// Which of the program's windows the user has worked with last.
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QWindow>

class QWidget;

namespace ovrin {

// Whether the user can go to such a window: not toasts, cards, menus and overlays, nor the icon in the tray.
bool isWorkedIn(const QWidget& window);

// Main thread, while the QApplication is there. Counts the windows that the user can go to.
class RecentWindows {
public:
    RecentWindows();

    // Null when no window is open; a minimised one is. The program keeps the window.
    QWindow* lastUsed() const;

private:
    QList<QPointer<QWindow>> used_;  // the newest last
    QObject listener_;               // ends the listening with this object
};

}  // namespace ovrin
