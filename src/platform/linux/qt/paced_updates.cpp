#include "platform/linux/qt/paced_updates.h"

#include <QEvent>
#include <QWidget>
#include <QWindow>
#include <utility>

#include "platform/linux/qt/wayland_window.h"

namespace ovrin {

PacedUpdates::PacedUpdates(QWidget& window) : QObject(&window), window_(window) {
    window.windowHandle()->installEventFilter(this);
    window.installEventFilter(this);
}

void PacedUpdates::update(const QRegion& area) {
    if (!wayland::isToolkit()) return window_.update(area);
    changed_ += area;
    window_.windowHandle()->requestUpdate();
}

bool PacedUpdates::eventFilter(QObject* watched, QEvent* event) {
    const bool isFrame = watched != &window_ && event->type() == QEvent::UpdateRequest;
    // The toolkit has every window drawn once more right after its first picture.
    const bool isAgain = watched == &window_ && event->type() == QEvent::UpdateLater;
    if (isFrame) window_.repaint(std::exchange(changed_, {}));
    if (isAgain) update(window_.rect());
    return isFrame || isAgain;
}

}  // namespace ovrin
