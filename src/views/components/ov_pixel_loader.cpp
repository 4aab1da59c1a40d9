#include "views/components/ov_pixel_loader.h"

#include <QPainter>
#include <QTimerEvent>
#include <array>

#include "views/components/drawing.h"

namespace ovrin {

namespace {

constexpr int stepMilliseconds = 90;
constexpr int cell = 5;
constexpr double dot = 3.5;

// The way the light takes around the square, and the middle last: (column, row).
struct Cell {
    int column;
    int row;
};
constexpr std::array<Cell, 9> path{{{0, 0}, {1, 0}, {2, 0}, {2, 1}, {2, 2}, {1, 2}, {0, 2}, {0, 1}, {1, 1}}};

// How bright a point is, by the number of steps since the light passed it.
double brightness(int age) {
    return age < 5 ? 1.0 - 0.17 * age : 0.18;
}

}  // namespace

OVPixelLoader::OVPixelLoader(ViewEnvironment& environment, theme::ColorToken tint, QWidget* parent)
    : OVWidget(environment, parent), tint_(tint) {
    setFixedSize(sizeHint());
    connect(&environment, &ViewEnvironment::changed, this, &OVPixelLoader::startOrStop);
}

void OVPixelLoader::startOrStop() {
    // A hidden loader must not wake the processor.
    if (isVisible() && !environment().settings().reducesMotion) {
        timer_.start(stepMilliseconds, this);
    } else {
        timer_.stop();
    }
}

void OVPixelLoader::showEvent(QShowEvent* /*event*/) {
    startOrStop();
}

void OVPixelLoader::hideEvent(QHideEvent* /*event*/) {
    startOrStop();
}

void OVPixelLoader::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) return;
    step_ = (step_ + 1) % static_cast<int>(path.size());
    update();
}

void OVPixelLoader::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int count = static_cast<int>(path.size());
    for (int i = 0; i < count; ++i) {
        const Cell& place = path.at(static_cast<std::size_t>(i));
        const int age = (step_ - i + count) % count;
        QColor tone = color(tint_);
        tone.setAlphaF(static_cast<float>(brightness(age)));
        fillRounded(painter, QRectF(place.column * cell + 1, place.row * cell + 1, dot, dot), 1, tone);
    }
}

}  // namespace ovrin
