#include "views/command_palette/command_list.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "theme/motion.h"
#include "theme/ov_icon.h"
#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int rowHeight = 46;
constexpr int rowSpacing = 3;
constexpr int horizontalPadding = 5;
constexpr int verticalPadding = 7;
constexpr double rowRadius = 9;
constexpr int iconTile = 30;
constexpr double iconSize = 15;
constexpr int inset = 9;  // between the edge of a row and what it holds
constexpr int emptyHeight = 140;
constexpr const char* nothingMatches = "没有匹配的命令";

}  // namespace

CommandList::CommandList(ViewEnvironment& environment, CommandPaletteViewModel& viewModel, QWidget* parent)
    : OVWidget(environment, parent),
      viewModel_(viewModel),
      highlight_(environment, theme::motion::tab, [this](double) { update(); }) {
    setMouseTracking(true);
    subscriptions_.push_back(viewModel.query().onDidChange([this](const std::string&) { showItems(); }));
    subscriptions_.push_back(viewModel.selectedIndex().onDidChange([this](int index) { showSelection(index); }));
    showItems();
}

void CommandList::showItems() {
    items_ = viewModel_.filteredItems();
    const int count = static_cast<int>(items_.size());
    const int rows = count * rowHeight + std::max(0, count - 1) * rowSpacing;
    setFixedHeight(count == 0 ? emptyHeight : rows + 2 * verticalPadding);
    // What was highlighted is another row now, or gone.
    highlight_.jumpTo(rowFrame(viewModel_.selectedIndex().value()).top());
    emit selected(viewModel_.selectedIndex().value());
    update();
}

void CommandList::showSelection(int index) {
    highlight_.animateTo(rowFrame(index).top());
    emit selected(index);
}

QRect CommandList::rowFrame(int index) const {
    return {horizontalPadding, verticalPadding + index * (rowHeight + rowSpacing), width() - 2 * horizontalPadding,
            rowHeight};
}

QString CommandList::rowText(int index) const {
    if (items_.empty()) return toQString(nothingMatches);
    const CommandItem& item = items_.at(static_cast<std::size_t>(index));
    QStringList words{toQString(item.title), toQString(item.subtitle.value_or(""))};
    if (item.shortcutDisplay) words.push_back(toQString(*item.shortcutDisplay));
    return words.join(QStringLiteral("，"));
}

int CommandList::rowAt(const QPoint& position) const {
    for (int index = 0; index < static_cast<int>(items_.size()); ++index) {
        if (rowFrame(index).contains(position)) return index;
    }
    return -1;
}

void CommandList::mouseMoveEvent(QMouseEvent* event) {
    const int row = rowAt(event->position().toPoint());
    if (row >= 0) viewModel_.select(row);
}

void CommandList::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) pressedRow_ = rowAt(event->position().toPoint());
}

// Moving off the row before the button is up takes the click back.
void CommandList::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const int pressed = std::exchange(pressedRow_, -1);
    if (pressed >= 0 && rowAt(event->position().toPoint()) == pressed) viewModel_.execute(pressed);
}

void CommandList::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (items_.empty()) {
        painter.setFont(toQFont(theme::font::body));
        painter.setPen(color(ColorToken::ink3));
        painter.drawText(rect(), Qt::AlignCenter, toQString(nothingMatches));
        return;
    }
    QRectF highlighted = rowFrame(0);
    highlighted.moveTop(highlight_.value());
    fillRounded(painter, highlighted, rowRadius, color(ColorToken::accentTint));
    for (int index = 0; index < static_cast<int>(items_.size()); ++index) {
        const QRect frame = rowFrame(index);
        if (!frame.intersects(event->rect())) continue;
        drawRow(painter, items_[static_cast<std::size_t>(index)], frame, index == viewModel_.selectedIndex().value());
    }
}

void CommandList::drawRow(QPainter& painter, const CommandItem& item, const QRect& frame, bool isSelected) const {
    const QRect tile(frame.left() + inset, frame.center().y() + 1 - iconTile / 2, iconTile, iconTile);
    fillRounded(painter, tile, 8, color(ColorToken::inset));
    drawIcon(painter, OVIcon(item.symbolName), tile, iconSize,
             color(isSelected ? ColorToken::accentInk : ColorToken::ink2));

    const int right = drawShortcut(painter, item, frame);
    const QRect words(tile.right() + 11, frame.top() + 5, right - tile.right() - 21, rowHeight - 10);
    const auto drawLine = [&](const QString& text, const theme::FontStyle& style, ColorToken token, Qt::Alignment at) {
        const QFont font = toQFont(style);
        painter.setFont(font);
        painter.setPen(color(token));
        painter.drawText(words, at | Qt::AlignLeft, QFontMetrics(font).elidedText(text, Qt::ElideRight, words.width()));
    };
    drawLine(toQString(item.title), theme::font::bodyMedium, ColorToken::ink, Qt::AlignTop);
    drawLine(toQString(item.subtitle.value_or("")), theme::font::caption, ColorToken::ink2, Qt::AlignBottom);
}

// The x coordinate that is left for the words.
int CommandList::drawShortcut(QPainter& painter, const CommandItem& item, const QRect& frame) const {
    const int edge = frame.right() - inset;
    if (!item.shortcutDisplay) return edge;
    const QString text = toQString(*item.shortcutDisplay);
    const QFont font = toQFont({12, theme::FontWeight::medium, theme::FontDesign::standard});
    const int width = static_cast<int>(std::ceil(QFontMetricsF(font).horizontalAdvance(text))) + 14;
    const QRect cap(edge - width, frame.center().y() + 1 - 11, width, 22);
    fillRounded(painter, cap, 6, color(ColorToken::inset));
    painter.setFont(font);
    painter.setPen(color(ColorToken::ink2));
    painter.drawText(cap, Qt::AlignCenter, text);
    return cap.left();
}

}  // namespace ovrin
