// A small busy indicator: a square of nine points that light up one after another. Still under reduced motion.
#pragma once

#include <QBasicTimer>

#include "views/components/ov_widget.h"

namespace ovrin {

class OVPixelLoader final : public OVWidget {
    Q_OBJECT

public:
    OVPixelLoader(ViewEnvironment& environment, theme::ColorToken tint, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {16, 16}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void startOrStop();

    theme::ColorToken tint_;
    QBasicTimer timer_;
    int step_ = 0;
};

}  // namespace ovrin
