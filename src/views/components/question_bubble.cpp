#include "views/components/question_bubble.h"

#include <QPainter>
#include <algorithm>

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
    : OVWidget(environment, parent), text_(new OVStreamingText(environment, OVStreamingText::Mode::plain, this)) {
    text_->setFocusRing(
        *text_, {.horizontalMargin = horizontalPadding, .verticalMargin = verticalPadding, .radius = cornerRadius});
    text_->setTextSoFar(text, OVStreamingText::Progress::finished);
    naturalWidth_ = std::max(text_->naturalWidth(), shortestText);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int QuestionBubble::textWidthFor(int width) const {
    const int widest = static_cast<int>(width * widestShare) - 2 * horizontalPadding;
    return std::clamp(widest, shortestText, naturalWidth_);
}

int QuestionBubble::heightForWidth(int width) const {
    const int textWidth = textWidthFor(width);
    // A text that needs no wrapping may be narrower than any that a layout is asked about.
    const int textHeight = textWidth == naturalWidth_ ? text_->layOut(textWidth) : text_->heightForWidth(textWidth);
    return textHeight + 2 * verticalPadding;
}

QSize QuestionBubble::sizeHint() const {
    return {naturalWidth_ + 2 * horizontalPadding, text_->sizeHint().height() + 2 * verticalPadding};
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
