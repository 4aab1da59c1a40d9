#include "views/command_palette/command_list.h"

#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "theme/motion.h"
#include "views/command_palette/command_row.h"
#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int rowSpacing = 3;
constexpr int horizontalPadding = 5;
constexpr int verticalPadding = 7;
constexpr double rowRadius = 9;
constexpr int emptyHeight = 140;
constexpr const char* nothingMatches = "没有匹配的命令";

}  // namespace

CommandList::CommandList(ViewEnvironment& environment, CommandPaletteViewModel& viewModel, QWidget* parent)
    : OVWidget(environment, parent),
      viewModel_(viewModel),
      highlight_(environment, theme::motion::tab, [this](double) { update(); }) {
    setAccessibleRole(QAccessible::List);
    setAccessibleName(QStringLiteral("命令"));
    setMouseTracking(true);
    makeRows();
    subscriptions_.push_back(viewModel.query().onDidChange([this](const std::string&) { showMatches(); }));
    subscriptions_.push_back(viewModel.selectedIndex().onDidChange([this](int) {
        highlight_.animateTo(selectedFrame().top());
        showSelection();
    }));
    showMatches();
}

void CommandList::makeRows() {
    for (const CommandItem& item : viewModel_.items()) {
        auto* const row = new CommandRow(environment(), item, this);
        connect(row, &CommandRow::pressed, this, [this, row] { run(*row); });
        rows_.push_back(row);
    }
}

void CommandList::showMatches() {
    const std::vector<CommandItem> items = viewModel_.filteredItems();
    matches_.clear();
    for (CommandRow* const row : rows_) {
        const bool matches = std::ranges::find(items, row->item().id, &CommandItem::id) != items.end();
        row->setVisible(matches);
        if (!matches) continue;
        row->setGeometry(rowFrame(static_cast<int>(matches_.size())));
        matches_.push_back(row);
    }
    const int count = static_cast<int>(matches_.size());
    const int rows = count * CommandRow::height + std::max(0, count - 1) * rowSpacing;
    setFixedHeight(count == 0 ? emptyHeight : rows + 2 * verticalPadding);
    // What was highlighted is another row now, or gone.
    highlight_.jumpTo(selectedFrame().top());
    showSelection();
    update();
}

void CommandList::showSelection() {
    const int selected = viewModel_.selectedIndex().value();
    for (int index = 0; CommandRow* const row : matches_) row->setSelected(index++ == selected);
    emit selectionChanged();
}

void CommandList::run(const CommandRow& row) {
    const auto found = std::ranges::find(matches_, &row);
    if (found != matches_.end()) viewModel_.execute(static_cast<int>(found - matches_.begin()));
}

QRect CommandList::rowFrame(int index) const {
    return {horizontalPadding, verticalPadding + index * (CommandRow::height + rowSpacing),
            width() - 2 * horizontalPadding, CommandRow::height};
}

QRect CommandList::selectedFrame() const {
    return rowFrame(viewModel_.selectedIndex().value());
}

QString CommandList::selectedWords() const {
    if (matches_.empty()) return toQString(nothingMatches);
    return matches_.at(static_cast<std::size_t>(viewModel_.selectedIndex().value()))->words();
}

int CommandList::rowAt(const QPoint& position) const {
    for (int index = 0; index < static_cast<int>(matches_.size()); ++index) {
        if (rowFrame(index).contains(position)) return index;
    }
    return -1;
}

void CommandList::selectAt(const QPoint& position) {
    const int row = rowAt(position);
    if (row >= 0) viewModel_.select(row);
}

void CommandList::selectBelowPointer() {
    const QPoint pointer = mapFromGlobal(QCursor::pos());
    if (visibleRegion().contains(pointer)) selectAt(pointer);
}

void CommandList::mouseMoveEvent(QMouseEvent* event) {
    selectAt(event->position().toPoint());
}

// The arrow keys may have moved the selection away from the pointer, or the list below it.
void CommandList::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    pressedRow_ = rowAt(event->position().toPoint());
    selectAt(event->position().toPoint());
}

// Moving off the row before the button is up takes the click back.
void CommandList::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const int pressed = std::exchange(pressedRow_, -1);
    if (pressed >= 0 && rowAt(event->position().toPoint()) == pressed) viewModel_.execute(pressed);
}

void CommandList::resizeEvent(QResizeEvent* /*event*/) {
    for (int index = 0; CommandRow* const row : matches_) row->setGeometry(rowFrame(index++));
}

void CommandList::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (matches_.empty()) {
        painter.setFont(toQFont(theme::font::body));
        painter.setPen(color(ColorToken::ink3));
        painter.drawText(rect(), Qt::AlignCenter, toQString(nothingMatches));
        return;
    }
    QRectF highlighted = rowFrame(0);
    highlighted.moveTop(highlight_.value());
    fillRounded(painter, highlighted, rowRadius, color(ColorToken::accentTint));
}

}  // namespace ovrin
