#include "views/history/history_row.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPainter>
#include <string_view>
#include <utility>

#include "views/components/drawing.h"
#include "views/components/ov_button.h"
#include "views/components/ov_status_pill.h"
#include "views/history/history_accessibility.h"
#include "windows/history_filter.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr double radius = 12;
constexpr int padding = 14;
constexpr int verticalPadding = 12;
constexpr int iconTile = 34;
constexpr double iconSize = 16;
constexpr int textLeft = padding + iconTile + 12;
constexpr int headHeight = 22;  // of the line with the kind and the time
constexpr int headGap = 6;
constexpr int resultGap = 4;
constexpr int buttonSize = 28;
constexpr int buttonGap = 2;
constexpr int buttonsWidth = 2 * buttonSize + buttonGap;
constexpr int buttonMargin = 9;          // at the right and the upper edge
constexpr qsizetype spokenLength = 100;  // UTF-16 units of the text that a screen reader reads out

QString spokenName(const HistoryRecord& record, const QString& time) {
    // A part of the text that is certainly long enough, whatever it consists of.
    const std::string_view part = std::string_view(record.sourceText).substr(0, 8 * std::size_t{spokenLength});
    return QStringLiteral("%1，%2，%3")
        .arg(toQString(label(historyKind(record.recordType))), time,
             beginning(toQString(part).simplified(), spokenLength));
}

}  // namespace

HistoryRow::HistoryRow(ViewEnvironment& environment, QWidget* parent)
    : OVSurface(environment, radius, Elevation::flat, parent),
      pill_(new OVStatusPill(environment, {}, OVStatusPill::Kind::neutral, this)),
      copy_(new OVIconButton(environment, OVIcon::copy, QStringLiteral("复制"), this)),
      delete_(new OVIconButton(environment, OVIcon::trash, QStringLiteral("删除"), this)) {
    installHistoryAccessibility();
    setAttribute(Qt::WA_Hover);
    pill_->setAttribute(Qt::WA_TransparentForMouseEvents);
    setTabStop(false);
    connect(copy_, &QAbstractButton::clicked, this, &HistoryRow::copyRequested);
    connect(delete_, &QAbstractButton::clicked, this, &HistoryRow::deletionRequested);
}

int HistoryRow::height(const Lines& lines) {
    const int result = lines.result > 0 ? resultGap + lines.result * PreviewText::lineHeight : 0;
    return 2 * verticalPadding + headHeight + headGap + lines.source * PreviewText::lineHeight + result;
}

int HistoryRow::textWidth(int rowWidth) {
    return rowWidth - textLeft - padding;
}

QFont HistoryRow::textFont() {
    return toQFont(theme::font::body);
}

void HistoryRow::setRecord(std::shared_ptr<const HistoryRecord> record, const QString& time) {
    record_ = std::move(record);
    time_ = time;
    source_.emplace(record_->sourceText, textFont());
    result_.reset();
    if (record_->resultText && !record_->resultText->empty()) result_.emplace(*record_->resultText, textFont());
    pill_->set(toQString(label(historyKind(record_->recordType))), OVStatusPill::Kind::neutral);
    pill_->adjustSize();
    setAccessibleName(spokenName(*record_, time_));
    update();
}

void HistoryRow::setLines(const Lines& lines) {
    lines_ = lines;
    update();
}

void HistoryRow::setTabStop(bool isTabStop) {
    setFocusPolicy(isTabStop ? Qt::StrongFocus : Qt::ClickFocus);
    for (OVIconButton* const button : {copy_, delete_}) {
        button->setFocusPolicy(isTabStop ? Qt::TabFocus : Qt::NoFocus);
    }
}

void HistoryRow::resizeEvent(QResizeEvent* /*event*/) {
    pill_->move(textLeft, verticalPadding);
    delete_->move(width() - buttonMargin - buttonSize, buttonMargin);
    copy_->move(width() - buttonMargin - buttonsWidth, buttonMargin);
}

void HistoryRow::paintEvent(QPaintEvent* event) {
    OVSurface::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    drawGround(painter);

    const QRect tile(padding, verticalPadding, iconTile, iconTile);
    fillRounded(painter, tile, 9, color(ColorToken::inset));
    drawIcon(painter, icon(historyKind(record_->recordType)), tile, iconSize, color(ColorToken::ink2));

    const QFont caption = toQFont(theme::font::caption);
    const QRect head(pill_->geometry().right() + 9, verticalPadding, copy_->x() - pill_->geometry().right() - 17,
                     headHeight);
    painter.setFont(caption);
    painter.setPen(color(ColorToken::ink2));
    painter.drawText(head, Qt::AlignVCenter | Qt::AlignLeft,
                     QFontMetrics(caption).elidedText(time_, Qt::ElideRight, head.width()));

    QRectF area(textLeft, verticalPadding + headHeight + headGap, textWidth(width()),
                lines_.source * PreviewText::lineHeight);
    source_->draw(painter, area, color(ColorToken::ink));
    if (!result_) return;
    area = QRectF(area.left(), area.bottom() + resultGap, area.width(), lines_.result * PreviewText::lineHeight);
    result_->draw(painter, area, color(ColorToken::ink2));
}

void HistoryRow::drawGround(QPainter& painter) const {
    if (underMouse() || isPressed_) {
        QColor shade = color(ColorToken::hover);
        shade.setAlphaF(isPressed_ ? 0.9F : 0.5F);
        fillRounded(painter, rect(), radius, shade);
    }
    if (!hasFocus()) return;
    painter.setPen(QPen(color(ColorToken::accent), 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), radius - 0.75, radius - 0.75);
}

void HistoryRow::mousePressEvent(QMouseEvent* event) {
    isPressed_ = event->button() == Qt::LeftButton;
    update();
}

// Moving off the row before the button is up takes the click back.
void HistoryRow::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !std::exchange(isPressed_, false)) return;
    update();
    if (rect().contains(event->position().toPoint())) emit opened();
}

void HistoryRow::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByPointer = event->reason() == QContextMenuEvent::Mouse;
    emit menuRequested(isByPointer ? event->globalPos() : mapToGlobal(QPoint(textLeft, verticalPadding + headHeight)));
}

void HistoryRow::focusInEvent(QFocusEvent* /*event*/) {
    update();
}

void HistoryRow::focusOutEvent(QFocusEvent* /*event*/) {
    update();
}

}  // namespace ovrin
