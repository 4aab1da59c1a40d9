#include "views/components/ov_error_note.h"

#include <QHBoxLayout>
#include <QPainter>

#include "views/components/drawing.h"
#include "views/components/ov_animated_icon.h"
#include "views/components/ov_streaming_text.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double cornerRadius = 9;
constexpr double iconSize = 14;
constexpr double noteLine = 17;             // points from one line to the next
constexpr qsizetype longestMessage = 1000;  // in UTF-16 units: an answer that is no message may be a whole web page
const theme::FontStyle noteFont{12, theme::FontWeight::regular, theme::FontDesign::standard};
}  // namespace

OVErrorNote::OVErrorNote(ViewEnvironment& environment, QWidget* parent)
    : OVWidget(environment, parent), words_(new OVStreamingText(environment, OVStreamingText::Mode::plain)) {
    words_->setInterfaceStyle({.font = noteFont, .lineHeight = noteLine});
    words_->setColor(ColorToken::red);
    words_->setFocusRing(*this, {.horizontalMargin = 0, .verticalMargin = 0, .radius = cornerRadius});
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(10, 8, 10, 8);
    row->setSpacing(8);
    row->addWidget(new OVAnimatedIcon(environment, OVIcon::triangleAlert, iconSize, ColorToken::red), 0, Qt::AlignTop);
    row->addWidget(words_, 1);
    hide();
}

void OVErrorNote::setMessage(const std::optional<std::string>& message) {
    const QString words = beginning(toQString(message.value_or("")), longestMessage);
    words_->setTextSoFar(words.toStdString(), OVStreamingText::Progress::finished);
    words_->showPending();
    setVisible(message.has_value());
}

void OVErrorNote::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = color(ColorToken::red);
    ground.setAlphaF(environment().isDark() ? 0.14F : 0.08F);
    fillRounded(painter, rect(), cornerRadius, ground);
}

}  // namespace ovrin
