#include "views/components/ov_focus_ring.h"

#include <QPainter>
#include <QProxyStyle>

namespace ovrin {

namespace {

constexpr double ringWidth = 1.5;  // points

// The toolkit asks the style where a frame goes.
class RingStyle final : public QProxyStyle {
public:
    explicit RingStyle(const OVFocusRing::Shape& shape) : shape_(shape) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        if (metric == PM_FocusFrameHMargin) return shape_.horizontalMargin;
        if (metric == PM_FocusFrameVMargin) return shape_.verticalMargin;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        if (hint == SH_FocusFrame_AboveWidget) return 1;
        if (hint == SH_FocusFrame_Mask) return 0;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }

private:
    OVFocusRing::Shape shape_;
};

}  // namespace

OVFocusRing::OVFocusRing(ViewEnvironment& environment, QWidget& around, const Shape& shape)
    : QFocusFrame(&around), environment_(environment), radius_(shape.radius) {
    auto* const style = new RingStyle(shape);
    style->setParent(this);
    setStyle(style);
    connect(&environment, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
    setWidget(&around);
}

void OVFocusRing::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(environment_.color(theme::ColorToken::accent), ringWidth));
    constexpr double inset = ringWidth / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius_, radius_);
}

}  // namespace ovrin
