#include "views/components/question_bubble.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "views/components/drawing.h"

namespace ovrin {

namespace {
constexpr int horizontalPadding = 13;
constexpr int verticalPadding = 7;
constexpr double cornerRadius = 14;
constexpr double widestShare = 0.8;
constexpr int shortestText = 10;
}  // namespace

QuestionBubble::QuestionBubble(ViewEnvironment& environment, std::string_view text, QWidget* parent)
    : OVWidget(environment, parent),
      text_(new OVStreamingText(environment, OVStreamingText::Mode::plain, this)),
      naturalWidth_(shortestText) {
    text_->setTextSoFar(text, OVStreamingText::Progress::finished);
    const QFontMetricsF metrics(toQFont(theme::font::body));
    for (const QString& line : toQString(text).split(u'\n')) {
        naturalWidth_ = std::max(naturalWidth_, static_cast<int>(std::ceil(metrics.horizontalAdvance(line))) + 2);
    }
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int QuestionBubble::textWidthFor(int width) const {
    const int widest = static_cast<int>(width * widestShare) - 2 * horizontalPadding;
    return std::clamp(widest, shortestText, std::max(naturalWidth_, shortestText));
}

int QuestionBubble::heightForWidth(int width) const {
    return text_->heightForWidth(textWidthFor(width)) + 2 * verticalPadding;
}

QSize QuestionBubble::sizeHint() const {
    const int width = naturalWidth_ + 2 * horizontalPadding;
    return {width, heightForWidth(width)};
}

void QuestionBubble::resizeEvent(QResizeEvent* /*event*/) {
    const int textWidth = textWidthFor(width());
    text_->setGeometry(width() - textWidth - horizontalPadding, verticalPadding, textWidth,
                       height() - 2 * verticalPadding);
}

void QuestionBubble::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(
        painter,
        QRectF(text_->geometry()).adjusted(-horizontalPadding, -verticalPadding, horizontalPadding, verticalPadding),
        cornerRadius, color(theme::ColorToken::accentTint));
}

}  // namespace ovrin
