// What a widget showed leaves to one side while what it shows now comes in from the other, both fading. Under reduced
// motion they only fade. Main thread.
#pragma once

#include <QGraphicsEffect>
#include <QPixmap>

#include "views/components/spring_animation.h"

namespace ovrin {

class ViewEnvironment;

class SlidingExchange final : public QGraphicsEffect {
    Q_OBJECT

public:
    enum class Direction : std::uint8_t { forward, backward };  // forward: the new comes in from the right

    // Becomes the effect of the widget, which draws as ever unless an exchange runs.
    SlidingExchange(const ViewEnvironment& environment, QWidget& widget);

    // Called before the widget shows anything else. One that runs ends at once.
    void begin(Direction direction);

protected:
    void draw(QPainter* painter) override;

private:
    const ViewEnvironment& environment_;
    QWidget& widget_;
    QPixmap before_;
    Direction direction_ = Direction::forward;
    SpringAnimation progress_;
};

}  // namespace ovrin
