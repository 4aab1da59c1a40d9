// A switch that is on or off. A check box to the toolkit and to assistive technology, which tell its state.
#pragma once

#include <QCheckBox>

#include "views/components/spring_animation.h"
#include "views/components/view_environment.h"

namespace ovrin {

// clicked(bool) is emitted when the user turns it; setOn() tells nobody.
class OVSwitch final : public QCheckBox {
    Q_OBJECT

public:
    // label is its name for assistive technology.
    OVSwitch(ViewEnvironment& environment, const QString& label, QWidget* parent = nullptr);

    void setOn(bool isOn);
    QSize sizeHint() const override;

protected:
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void moveKnob();

    ViewEnvironment& environment_;
    SpringAnimation knob_;  // 0 off, 1 on
};

}  // namespace ovrin
