#include "views/components/ov_label.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "views/components/drawing.h"

namespace ovrin {

namespace {
// Points of a line of a text that wraps: what it would like to have and what it can do with.
constexpr double preferredLine = 460;
constexpr double narrowestLine = 60;
constexpr double disabledOpacity = 0.45;
}  // namespace

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

// Puts the text into lines of the width and gives the height of them. What the toolkit's own label does not do: break
// inside of a word that is too wide, such as a URL, instead of pushing the window's edge.
double OVLabel::layOut(QTextLayout& layout, double width) const {
    layout.setText(text().replace('\n', QChar::LineSeparator));
    layout.setFont(font());
    QTextOption option(alignment());
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    double height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, height});
        height += std::ceil(line.height());
    }
    layout.endLayout();
    return height;
}

int OVLabel::heightForWidth(int width) const {
    if (!wordWrap()) return QLabel::heightForWidth(width);
    const QMargins margins = contentsMargins();
    QTextLayout layout;
    return static_cast<int>(layOut(layout, width - margins.left() - margins.right())) + margins.top() +
           margins.bottom();
}

QSize OVLabel::sizeWithin(double longestLine) const {
    QTextLayout layout;
    const double height = layOut(layout, longestLine);
    double width = 0;
    for (int line = 0; line < layout.lineCount(); ++line) {
        width = std::max(width, layout.lineAt(line).naturalTextWidth());
    }
    return QSize(static_cast<int>(std::ceil(width)), static_cast<int>(height)).grownBy(contentsMargins());
}

QSize OVLabel::sizeHint() const {
    return wordWrap() ? sizeWithin(preferredLine) : QLabel::sizeHint();
}

QSize OVLabel::minimumSizeHint() const {
    return wordWrap() ? QSize(sizeWithin(narrowestLine).width(), fontMetrics().height()) : QLabel::minimumSizeHint();
}

void OVLabel::paintEvent(QPaintEvent* event) {
    if (!wordWrap()) return QLabel::paintEvent(event);
    QPainter painter(this);
    if (!isEnabled()) painter.setOpacity(disabledOpacity);
    painter.setPen(palette().color(QPalette::WindowText));
    const QRectF area = contentsRect();
    QTextLayout layout;
    const double height = layOut(layout, area.width());
    const double room = std::max(0.0, area.height() - height);
    const double above = alignment().testFlag(Qt::AlignVCenter)  ? std::floor(room / 2)
                         : alignment().testFlag(Qt::AlignBottom) ? room
                                                                 : 0;
    layout.draw(&painter, area.topLeft() + QPointF(0, above));
}

void OVLabel::applyColor() {
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, environment_.color(color_));
    setPalette(colors);
}

}  // namespace ovrin
