// Takes the keyboard for a window that the window manager does not know of and therefore gives no focus.
#pragma once

#include <QTimer>

class QWidget;

namespace ovrin {

// While the keys of the shortcut that opened the window are still down, the keyboard belongs to the shortcut's own
// grab: tries until they are up. Main thread; once for a window, to which it belongs, as it comes up.
class X11KeyboardGrab final : public QObject {
public:
    explicit X11KeyboardGrab(QWidget& window);

private:
    void attempt();

    QWidget& window_;
    QTimer attempts_;
};

}  // namespace ovrin
