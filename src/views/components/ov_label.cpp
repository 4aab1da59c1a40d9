#include "views/components/ov_label.h"

#include "views/components/drawing.h"

namespace ovrin {

OVLabel::OVLabel(ViewEnvironment& environment, const QString& text, const theme::FontStyle& style,
                 theme::ColorToken color, Lines lines, QWidget* parent)
    : QLabel(text, parent), environment_(environment), color_(color) {
    setTextFormat(Qt::PlainText);
    setFont(toQFont(style));
    setWordWrap(lines == Lines::wrapped);
    applyColor();
    connect(&environment_, &ViewEnvironment::changed, this, &OVLabel::applyColor);
}

void OVLabel::setColor(theme::ColorToken color) {
    color_ = color;
    applyColor();
}

void OVLabel::applyColor() {
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, environment_.color(color_));
    setPalette(colors);
}

}  // namespace ovrin
