// Updates of a large window, no more of them than the display shows. The toolkit draws a widget anew for every movement
// of the pointer and every step of an animation; a Wayland compositor without a graphics processor takes each of these
// pictures whole and falls behind. On X11, where only what has changed is sent, updates are passed on at once. Main
// thread.
#pragma once

#include <QObject>
#include <QRegion>

class QWidget;

namespace ovrin {

class PacedUpdates final : public QObject {
public:
    // Belongs to the window, whose native window exists.
    explicit PacedUpdates(QWidget& window);

    // The area is drawn anew in the next frame, in points of the window.
    void update(const QRegion& area);

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    QWidget& window_;
    QRegion changed_;  // since the last frame
};

}  // namespace ovrin
