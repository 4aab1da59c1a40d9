// What the window toolkit does not do for an ordinary window on a Wayland compositor. Main thread; the windows are on
// Wayland.
#pragma once

#include <QObject>

class QMargins;
class QWidget;
class QWindow;

namespace ovrin::wayland {

// Whether the toolkit's windows are on Wayland.
bool isToolkit();

// Whether the toolkit lets a window tell what of it is its frame. Its public interface doesn't.
bool knowsMargins();

// Tells how much of the window lies around its frame, in points. The window keeps its size.
void setMargins(QWindow& window, const QMargins& margins);

// Has compositors that tile windows leave this one as large as it is, each time it comes up: for them, that is what
// windows of a fixed size are for. Once the window is there it can be resized as ever. The object belongs to it.
class FloatingStart final : public QObject {
public:
    explicit FloatingStart(QWidget& window);

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void loosen();

    QWidget& window_;
    bool isFixed_ = false;
};

}  // namespace ovrin::wayland
