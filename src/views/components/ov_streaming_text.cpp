#include "views/components/ov_streaming_text.h"

#include <QAccessible>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleHints>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <utility>

#include "views/components/drawing.h"
#include "views/components/ov_menu.h"
#include "views/components/streaming_text_accessibility.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int frameInterval = 16;  // milliseconds
constexpr int narrowest = 140;     // points of width that a window leaves a text
constexpr int dragInterval = 40;   // milliseconds between steps of scrolling under a held mouse

// Whether the keyboard goes to a menu or another window, or comes back from there.
bool isForAWhile(const QFocusEvent& event) {
    return event.reason() == Qt::ActiveWindowFocusReason || event.reason() == Qt::PopupFocusReason;
}

}  // namespace

OVStreamingText::OVStreamingText(ViewEnvironment& environment, Mode mode, QWidget* parent)
    : OVWidget(environment, parent), document_(mode) {
    installStreamingTextAccessibility();
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setCursor(Qt::IBeamCursor);
    applyLook();
    connect(&environment, &ViewEnvironment::changed, this, &OVStreamingText::applyLook);
}

OVStreamingText::~OVStreamingText() {
    delete ring_.data();
}

void OVStreamingText::setTextSoFar(std::string_view utf8, Progress progress) {
    pendingText_ = utf8;
    pendingProgress_ = progress;
    isPending_ = true;
    const qint64 elapsed = sinceFrame_.isValid() ? sinceFrame_.elapsed() : frameInterval;
    if (elapsed >= frameInterval) {
        showPending();
    } else if (!frame_.isActive()) {
        frame_.start(frameInterval - static_cast<int>(elapsed), Qt::PreciseTimer, this);
    }
}

void OVStreamingText::showPending() {
    frame_.stop();
    if (!isPending_) return;
    isPending_ = false;
    sinceFrame_.start();
    const double heightBefore = document_.height();
    const QString toldBefore = QAccessible::isActive() ? plainText() : QString();
    document_.setText(pendingText_, pendingProgress_ == Progress::streaming ? MarkdownReader::Ending::open
                                                                            : MarkdownReader::Ending::known);
    anchor_ = document_.existing(anchor_);
    cursor_ = document_.existing(cursor_);
    const int top = static_cast<int>(document_.changedFrom()) - 1;
    update(0, top, width(), std::max(height() - top, 0));
    if (document_.height() != heightBefore) updateGeometry();
    if (QAccessible::isActive()) tellTextChange(*this, toldBefore);
    const Progress before = std::exchange(shownProgress_, pendingProgress_);
    if (before == Progress::streaming && shownProgress_ == Progress::finished) tellEndOfText(*this);
}

void OVStreamingText::setLanguage(std::string_view tag) {
    if (tag == language_) return;
    language_ = tag;
    applyLook();
}

void OVStreamingText::setColor(ColorToken color) {
    if (color == color_) return;
    color_ = color;
    applyLook();
}

void OVStreamingText::setInterfaceStyle(const InterfaceStyle& style) {
    interfaceStyle_ = style;
    applyLook();
}

void OVStreamingText::setFocusRing(QWidget& around, const OVFocusRing::Shape& shape) {
    ringedPart_ = &around;
    ringShape_ = shape;
}

void OVStreamingText::applyLook() {
    QColor line = color(ColorToken::ink);
    line.setAlphaF(environment().isDark() ? 0.1F : 0.08F);
    QColor selection = color(ColorToken::accent);
    selection.setAlphaF(environment().isDark() ? 0.32F : 0.36F);
    document_.setLook({.language = language_,
                       .text = color(color_),
                       .quietText = color(ColorToken::ink2),
                       .link = color(ColorToken::accentInk),
                       .codeBackground = color(ColorToken::inset),
                       .inlineCodeBackground = color(ColorToken::hover),
                       .line = line,
                       .selection = selection,
                       .interfaceStyle = interfaceStyle_});
    updateGeometry();
    update();
}

void OVStreamingText::selectAll() {
    select(document_.begin(), document_.end());
}

void OVStreamingText::copy() const {
    if (hasSelection()) QGuiApplication::clipboard()->setText(selectedText());
}

// Layouts ask for the height at three widths: the minimum, the hint and the one the text will really get. Laying out
// for the last beforehand costs nothing extra; the hint is the width there is already, and to the minimum, which adds
// up to much less than any window's, the answer does not matter.
int OVStreamingText::heightForWidth(int width) const {
    if (width < narrowest) return 0;
    return const_cast<OVStreamingText*>(this)->layOut(width);
}

int OVStreamingText::layOut(int width) {
    document_.setWidth(width);
    return static_cast<int>(document_.height());
}

int OVStreamingText::naturalWidth() {
    layOut(QWIDGETSIZE_MAX);
    return static_cast<int>(std::ceil(document_.usedWidth()));
}

QSize OVStreamingText::sizeHint() const {
    return {static_cast<int>(document_.width()), static_cast<int>(document_.height())};
}

QSize OVStreamingText::minimumSizeHint() const {
    return {1, 0};
}

void OVStreamingText::resizeEvent(QResizeEvent* /*event*/) {
    document_.setWidth(std::max(width(), 1));
}

void OVStreamingText::paintEvent(QPaintEvent* event) {
    document_.setWidth(std::max(width(), 1));  // which a layout may have asked about another one since
    QPainter painter(this);
    document_.draw(painter, event->rect(), selection());
}

void OVStreamingText::timerEvent(QTimerEvent* event) {
    if (event->timerId() == frame_.timerId()) return showPending();
    if (event->timerId() == drag_.timerId()) extendTo(mapFromGlobal(QCursor::pos()));
}

void OVStreamingText::select(Position anchor, Position cursor) {
    if (anchor == anchor_ && cursor == cursor_) return;
    anchor_ = anchor;
    cursor_ = cursor;
    update();
    if (QAccessible::isActive()) tellSelection(*this);
}

OVStreamingText::Range OVStreamingText::unitAt(Position position) const {
    switch (unit_) {
        case Unit::word:
            return document_.wordAt(position);
        case Unit::block:
            return document_.blockAt(position);
        case Unit::character:
            break;
    }
    return {position, position};
}

void OVStreamingText::grip(const QPointF& point, Unit unit) {
    unit_ = unit;
    grip_ = unitAt(document_.at(point));
    isSelecting_ = true;
    select(grip_.begin, grip_.end);
}

void OVStreamingText::extendTo(const QPointF& point) {
    const Range reached = unitAt(document_.at(point));
    if (reached.begin < grip_.begin) {
        select(grip_.end, reached.begin);
    } else {
        select(grip_.begin, std::max(grip_.end, reached.end));
    }
    emit cursorMoved(QRect(point.toPoint(), QSize(1, 1)));
}

bool OVStreamingText::isTripleClick(const QMouseEvent& event) const {
    const QStyleHints* const hints = QGuiApplication::styleHints();
    return sinceDoubleClick_.isValid() && sinceDoubleClick_.elapsed() < hints->mouseDoubleClickInterval() &&
           (event.position().toPoint() - doubleClickPosition_).manhattanLength() < hints->startDragDistance();
}

void OVStreamingText::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    pressedLink_.clear();
    if (isTripleClick(*event)) return grip(event->position(), Unit::block);
    if (event->modifiers() & Qt::ShiftModifier) {
        unit_ = Unit::character;
        grip_ = {anchor_, anchor_};
        isSelecting_ = true;
        return extendTo(event->position());
    }
    pressedLink_ = document_.linkAt(event->position());
    grip(event->position(), Unit::character);
}

void OVStreamingText::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    sinceDoubleClick_.start();
    doubleClickPosition_ = event->position().toPoint();
    grip(event->position(), Unit::word);
}

void OVStreamingText::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton) || !isSelecting_) {
        setCursor(document_.linkAt(event->position()).isEmpty() ? Qt::IBeamCursor : Qt::PointingHandCursor);
        return;
    }
    extendTo(event->position());
    // Held outside of what is in sight, the text goes on scrolling though the mouse rests.
    if (visibleRegion().contains(event->position().toPoint())) {
        drag_.stop();
    } else if (!drag_.isActive()) {
        drag_.start(dragInterval, this);
    }
}

void OVStreamingText::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    drag_.stop();
    isSelecting_ = false;
    const QString link = std::exchange(pressedLink_, {});
    if (hasSelection()) {
        // As every text on this desktop: what is selected can be pasted with the middle button.
        QClipboard* const clipboard = QGuiApplication::clipboard();
        if (clipboard->supportsSelection()) clipboard->setText(selectedText(), QClipboard::Selection);
    } else if (!link.isEmpty() && link == document_.linkAt(event->position())) {
        emit linkActivated(QUrl(link));
    }
}

void OVStreamingText::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new OVMenu(environment(), this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    using enum OVMenu::Entry;
    menu->add(QStringLiteral("复制"), hasSelection() ? available : unavailable, [this] { copy(); });
    menu->add(QStringLiteral("全选"), available, [this] { selectAll(); });
    menu->popup(event->globalPos());
}

void OVStreamingText::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) return copy();
    if (event->matches(QKeySequence::SelectAll)) return selectAll();
    if (const auto goal = moved(*event)) {
        select(anchor_, *goal);
        emit cursorMoved(document_.areaOf(*goal).toAlignedRect());
        return;
    }
    event->ignore();
}

// Where a key takes the end of the selection; none for other keys.
std::optional<OVStreamingText::Position> OVStreamingText::moved(const QKeyEvent& event) const {
    const auto is = [&event](QKeySequence::StandardKey key) { return event.matches(key); };
    if (is(QKeySequence::SelectNextChar)) return document_.nextCharacter(cursor_);
    if (is(QKeySequence::SelectPreviousChar)) return document_.previousCharacter(cursor_);
    if (is(QKeySequence::SelectNextWord)) return document_.nextWord(cursor_);
    if (is(QKeySequence::SelectPreviousWord)) return document_.previousWord(cursor_);
    if (is(QKeySequence::SelectNextLine)) return movedVertically(+1);
    if (is(QKeySequence::SelectPreviousLine)) return movedVertically(-1);
    if (is(QKeySequence::SelectStartOfLine)) return document_.lineBegin(cursor_);
    if (is(QKeySequence::SelectEndOfLine)) return document_.lineEnd(cursor_);
    if (is(QKeySequence::SelectStartOfDocument)) return document_.begin();
    if (is(QKeySequence::SelectEndOfDocument)) return document_.end();
    return std::nullopt;
}

OVStreamingText::Position OVStreamingText::movedVertically(int lines) const {
    const QRectF line = document_.areaOf(cursor_);
    for (double step = line.height() * 0.75;; step += 4) {  // gaps lie between the blocks
        const double y = lines > 0 ? line.top() + line.height() / 2 + step : line.bottom() - line.height() / 2 - step;
        if (y < 0) return document_.begin();
        if (y >= document_.height()) return document_.end();
        const Position reached = document_.at({line.left(), y});
        if (document_.areaOf(reached).top() != line.top()) return reached;
    }
}

// As everywhere, a click shows no ring.
void OVStreamingText::focusInEvent(QFocusEvent* event) {
    const bool isRinged = isForAWhile(*event) ? ring_ != nullptr : event->reason() != Qt::MouseFocusReason;
    if (isRinged && ring_ == nullptr) ring_ = new OVFocusRing(environment(), *ringedPart_, ringShape_);
    if (isRinged) ring_->show();
}

void OVStreamingText::focusOutEvent(QFocusEvent* event) {
    if (isForAWhile(*event)) {
        if (ring_ != nullptr) ring_->hide();
        return;
    }
    delete ring_.data();
    // One selection at a time in a window.
    const bool isElsewhere = event->reason() == Qt::MouseFocusReason || event->reason() == Qt::TabFocusReason ||
                             event->reason() == Qt::BacktabFocusReason;
    if (isElsewhere) select(cursor_, cursor_);
}

bool OVStreamingText::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QString link = document_.linkAt(help->pos());
        if (link.isEmpty()) {
            QToolTip::hideText();
        } else {
            QToolTip::showText(help->globalPos(), link.toHtmlEscaped(), this);
        }
        return true;
    }
    return OVWidget::event(event);
}

}  // namespace ovrin
