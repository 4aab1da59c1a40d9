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
    const bool isOfDisplay = watched != &window_;
    const bool isFrame = isOfDisplay && event->type() == QEvent::UpdateRequest;
    // When the compositor is long in coming to a picture, the toolkit takes the window for hidden. It then has no frame
    // for what was asked for meanwhile but the window's coming up again.
    const bool isBack = isOfDisplay && event->type() == QEvent::Expose && window_.windowHandle()->isExposed();
    // The toolkit has every window drawn once more right after its first picture.
    const bool isAgain = !isOfDisplay && event->type() == QEvent::UpdateLater;
    if ((isFrame || isBack) && !changed_.isEmpty()) window_.repaint(std::exchange(changed_, {}));
    if (isAgain) update(window_.rect());
    return isFrame || isAgain;
}

}  // namespace ovrin
