// Pages of which one is shown. A change moves and fades the pages along; under reduced motion it only fades.
#pragma once

#include <QPixmap>
#include <QPointer>
#include <cstdint>
#include <vector>

#include "views/components/ov_widget.h"
#include "views/components/spring_animation.h"

class QGraphicsOpacityEffect;

namespace ovrin {

class OVPageStack final : public OVWidget {
    Q_OBJECT

public:
    enum class Direction : std::uint8_t {
        forward,  // the new page comes up from below
        backward
    };

    explicit OVPageStack(ViewEnvironment& environment, QWidget* parent = nullptr);

    // Takes ownership. The first one is shown.
    void add(QWidget* page);
    // The new page takes pointer and keyboard at once. A change under way gives way to this one.
    void show(int index, Direction direction);
    int current() const { return current_; }
    QWidget* currentPage() const { return pages_.at(static_cast<std::size_t>(current_)); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void move(double progress);
    void settle();
    double travel(double points) const;

    std::vector<QWidget*> pages_;
    int current_ = 0;
    SpringAnimation progress_;  // of the change, 0..1
    double direction_ = 1;
    QPointer<QGraphicsOpacityEffect> fade_;  // of the page that comes, while it does
    QPixmap leaving_;                        // the picture of the page that goes
    QPointF leavingFrom_;
    double leavingOpacity_ = 1;  // at the start of the change
};

}  // namespace ovrin
