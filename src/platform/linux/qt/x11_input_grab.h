// Takes the keyboard, and the pointer if need be, for a window that the window manager does not know of and therefore
// gives no focus.
#pragma once

#include <QTimer>
#include <cstdint>

class QWidget;

namespace ovrin {

// While the keys of the shortcut or the button that opened the window are still down, they belong to the grab of
// another program: tries until they are up. Main thread; once for a window, to which it belongs, as it comes up.
class X11InputGrab final : public QObject {
public:
    enum class Devices : std::uint8_t { keyboard, both };

    X11InputGrab(QWidget& window, Devices devices);

private:
    void attempt();

    QWidget& window_;
    Devices devices_;
    QTimer attempts_;
};

}  // namespace ovrin
