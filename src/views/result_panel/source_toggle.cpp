#include "views/result_panel/source_toggle.h"

#include <QPainter>
#include <cmath>

#include "theme/motion.h"
#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double arrowSize = 14;
constexpr double gap = 4;
constexpr int toggleHeight = 24;
const theme::FontStyle wordsFont{12, theme::FontWeight::medium, theme::FontDesign::standard};
}  // namespace

SourceToggle::SourceToggle(ViewEnvironment& environment, QWidget* parent)
    : OVButtonBase(environment, parent), turn_(environment, theme::motion::tab, [this](double) { update(); }) {
    setText(QStringLiteral("原文"));
    setFont(toQFont(wordsFont));
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::toggled, this, [this](bool isRevealed) { turn_.animateTo(isRevealed ? 1 : 0); });
}

QSize SourceToggle::sizeHint() const {
    return {static_cast<int>(std::ceil(QFontMetricsF(font()).horizontalAdvance(text()) + arrowSize + gap)) + 6,
            toggleHeight};
}

void SourceToggle::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QColor shade = environment().color(isHovered() ? ColorToken::ink : ColorToken::ink2);
    painter.save();
    // Points to the right while the text is hidden, down when it is there.
    painter.translate(arrowSize / 2, QWidget::height() / 2.0);
    painter.rotate(-90 * (1 - turn_.value()));
    drawIcon(painter, OVIcon::chevronDown, QRectF(-arrowSize / 2, -arrowSize / 2, arrowSize, arrowSize), arrowSize,
             shade);
    painter.restore();
    painter.setFont(font());
    painter.setPen(shade);
    painter.drawText(QRectF(arrowSize + gap, 0, width(), QWidget::height()), Qt::AlignVCenter | Qt::AlignLeft, text());
    drawFocusRing(painter, 6);
}

}  // namespace ovrin
