#include "views/history/history_list.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>
#include <array>
#include <utility>

#include "base/watch.h"
#include "views/components/drawing.h"
#include "views/components/ov_button.h"
#include "views/components/ov_menu.h"
#include "views/components/ov_scroll_area.h"
#include "views/history/history_accessibility.h"
#include "windows/history_view_model.h"

namespace ovrin {

namespace {

constexpr int sideMargin = 20;
constexpr int topMargin = 4;
constexpr int bottomMargin = 20;
constexpr int spacing = 8;

}  // namespace

HistoryList::HistoryList(ViewEnvironment& environment, HistoryViewModel& viewModel, OVScrollArea& area)
    : OVWidget(environment), viewModel_(viewModel), area_(area) {
    installHistoryAccessibility();
    setAccessibleName(QStringLiteral("历史记录"));
    area.setContent(this);
    connect(area.verticalScrollBar(), &QScrollBar::valueChanged, this, &HistoryList::showRows);
    connect(area.verticalScrollBar(), &QScrollBar::rangeChanged, this, &HistoryList::showRows);
    changes_ = watch(viewModel.filtered(), [this](const HistoryRecords& records) { showRecords(records); });
}

void HistoryList::showRecords(const HistoryRecords& records) {
    const std::optional<Anchor> anchor = this->anchor();
    const Index focused = focusedIndex();
    const HistoryRecords before = std::exchange(records_, records);
    measure();
    placeRows();
    restore(anchor, before);
    if (focused >= 0 && indexOf(before[static_cast<std::size_t>(focused)]->id) < 0) {
        const Index next = survivorOf(before, focused);
        if (next >= 0) {
            moveTo(next);
        } else {
            emit keyboardLost();
        }
    }
    showRows();
}

// The widths of texts do not depend on that of the window: each is measured once.
void HistoryList::measure() {
    const QFont font = HistoryRow::textFont();
    std::unordered_map<const HistoryRecord*, TextWidths> widths;
    for (const auto& record : records_) {
        if (const auto known = widths_.find(record.get()); known != widths_.end()) {
            widths.insert(*known);
            continue;
        }
        const bool hasResult = record->resultText && !record->resultText->empty();
        widths.emplace(record.get(),
                       TextWidths{.source = PreviewText::widthOfOneLine(record->sourceText, font),
                                  .result = hasResult ? PreviewText::widthOfOneLine(*record->resultText, font) : -1});
    }
    widths_ = std::move(widths);
}

HistoryRow::Lines HistoryList::linesOf(Index index) const {
    const TextWidths& widths = widths_.at(&record(index));
    const double room = HistoryRow::textWidth(width() - 2 * sideMargin);
    const auto lines = [room](double width) { return width > room ? PreviewText::maximumLines : 1; };
    return {.source = lines(widths.source), .result = widths.result < 0 ? 0 : lines(widths.result)};
}

void HistoryList::placeRows() {
    laidOutWidth_ = width();
    tops_.assign(1, topMargin);
    for (Index index = 0; index < count(); ++index) {
        tops_.push_back(tops_.back() + HistoryRow::height(linesOf(index)) + spacing);
    }
    setFixedHeight(tops_.back() - spacing + bottomMargin);
}

void HistoryList::showRows() {
    if (width() != laidOutWidth_) return;  // until it is laid out for its new width
    const Index first = firstInSight();
    const Index last = std::min(indexAt(scrollPosition() + area_.viewport()->height()), count() - 1);
    for (Index index = first; index <= last; ++index) rowOf(index);
    if (const Index focused = focusedIndex(); focused >= 0) rowOf(focused);
    dropRowsOutside(first, last);
    const bool hasCurrent = current_ && rows_.contains(*current_);
    for (const auto& [id, row] : rows_) {
        row->setTabStop(hasCurrent ? id == *current_ : first < count() && id == record(first).id);
    }
}

HistoryRow& HistoryList::rowOf(Index index) {
    const auto& record = records_[static_cast<std::size_t>(index)];
    HistoryRow*& row = rows_[record->id];
    const bool isNew = row == nullptr;
    if (isNew) {
        row = new HistoryRow(environment(), this);
        connect(row, &HistoryRow::opened, this, [this, row = row] { viewModel_.open(*row->record()); });
        connect(row, &HistoryRow::copyRequested, this, [this, row = row] { viewModel_.copy(*row->record()); });
        connect(row, &HistoryRow::deletionRequested, this, [this, row = row] { deleteRecord(*row); });
        connect(row, &HistoryRow::menuRequested, this,
                [this, row = row](const QPoint& place) { showMenu(*row, place); });
        row->installEventFilter(this);
        row->copyButton()->installEventFilter(this);
        row->deleteButton()->installEventFilter(this);
    }
    if (row->record() != record) row->setRecord(record, toQString(viewModel_.timeText(*record)));
    row->setLines(linesOf(index));
    row->setGeometry(rowFrame(index));
    if (isNew) row->show();
    return *row;
}

void HistoryList::dropRowsOutside(Index first, Index last) {
    const Index focused = focusedIndex();
    std::erase_if(rows_, [&](const auto& entry) {
        const Index index = indexOf(entry.first);
        if ((index >= first && index <= last) || (index >= 0 && index == focused)) return false;
        entry.second->hide();
        entry.second->deleteLater();  // its own event may have led here
        return true;
    });
}

QList<HistoryRow*> HistoryList::rows() const {
    QList<HistoryRow*> rows;
    for (const auto& [id, row] : rows_) rows.push_back(row);
    std::ranges::sort(rows, {}, &QWidget::y);
    return rows;
}

HistoryList::Index HistoryList::indexOf(const Uuid& id) const {
    const auto found = std::ranges::find_if(records_, [&](const auto& record) { return record->id == id; });
    return found == records_.end() ? -1 : found - records_.begin();
}

// The row that the y coordinate lies in, or that it follows; the number of rows below the last one.
HistoryList::Index HistoryList::indexAt(int y) const {
    if (y >= tops_.back()) return count();
    return std::max<Index>(std::ranges::upper_bound(tops_, y) - tops_.begin() - 1, 0);
}

HistoryList::Index HistoryList::firstInSight() const {
    return indexAt(scrollPosition() + spacing);  // what lies above the gap before a row is that gap only
}

HistoryList::Index HistoryList::focusedIndex() const {
    const QWidget* const focus = window()->focusWidget();
    if (focus == nullptr || !isAncestorOf(focus)) return -1;
    for (const auto& [id, row] : rows_) {
        if (row == focus || row->isAncestorOf(focus)) return indexOf(id);
    }
    return -1;
}

// The record at the index of the list before, or else the next below it that is still there, or else above.
HistoryList::Index HistoryList::survivorOf(const HistoryRecords& before, Index index) const {
    for (auto at = static_cast<std::size_t>(index); at < before.size(); ++at) {
        if (const Index found = indexOf(before[at]->id); found >= 0) return found;
    }
    for (auto at = static_cast<std::size_t>(index); at-- > 0;) {
        if (const Index found = indexOf(before[at]->id); found >= 0) return found;
    }
    return -1;
}

QRect HistoryList::rowFrame(Index index) const {
    const auto at = static_cast<std::size_t>(index);
    return {sideMargin, tops_[at], width() - 2 * sideMargin, tops_[at + 1] - tops_[at] - spacing};
}

int HistoryList::scrollPosition() const {
    return area_.verticalScrollBar()->value();
}

void HistoryList::scrollTo(int position) {
    area_.verticalScrollBar()->setValue(position);
}

void HistoryList::scrollToTop() {
    scrollTo(0);
}

std::optional<HistoryList::Anchor> HistoryList::anchor() const {
    if (records_.empty()) return std::nullopt;
    Index index = focusedIndex();
    const int position = scrollPosition();
    const QRect sight(0, position, width(), area_.viewport()->height());
    if (index < 0 || !rowFrame(index).intersects(sight)) {
        if (position == 0) return std::nullopt;
        index = firstInSight();
        if (index >= count()) return std::nullopt;
    }
    return Anchor{.id = record(index).id, .offset = rowFrame(index).top() - position};
}

void HistoryList::restore(const std::optional<Anchor>& anchor, const HistoryRecords& before) {
    if (!anchor) return;
    const auto old = std::ranges::find_if(before, [&](const auto& record) { return record->id == anchor->id; });
    const Index index = survivorOf(before, old - before.begin());
    if (index >= 0) scrollTo(rowFrame(index).top() - anchor->offset);
}

void HistoryList::resizeEvent(QResizeEvent* /*event*/) {
    if (width() == laidOutWidth_) return;
    const std::optional<Anchor> anchor = this->anchor();
    placeRows();
    restore(anchor, records_);
    showRows();
}

void HistoryList::focusRow() {
    if (records_.empty()) return;
    const Index known = current_ ? indexOf(*current_) : -1;
    moveTo(known >= 0 ? known : std::min(firstInSight(), count() - 1));
}

void HistoryList::moveTo(Index index) {
    current_ = record(index).id;
    HistoryRow& row = rowOf(index);
    row.setFocus(Qt::TabFocusReason);
    const QRect frame = rowFrame(index);
    const int height = area_.viewport()->height();
    if (index == 0) {
        scrollTo(0);
    } else if (index == count() - 1) {
        scrollTo(area_.verticalScrollBar()->maximum());
    } else if (frame.top() - spacing < scrollPosition()) {
        scrollTo(frame.top() - spacing);
    } else if (frame.bottom() + spacing > scrollPosition() + height) {
        scrollTo(frame.bottom() + spacing - height);
    }
    showRows();
}

bool HistoryList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        if (const Index focused = focusedIndex(); focused >= 0 && current_ != record(focused).id) {
            current_ = record(focused).id;
            showRows();
        }
    }
    if (event->type() == QEvent::KeyPress && handleKey(*static_cast<QKeyEvent*>(event))) return true;  // NOLINT
    return OVWidget::eventFilter(watched, event);
}

// Return reaches a row itself only; on one of its buttons it presses that.
bool HistoryList::handleKey(QKeyEvent& event) {
    const Index index = focusedIndex();
    if (index < 0) return false;
    HistoryRow& row = rowOf(index);
    if (event.matches(QKeySequence::Copy)) {
        viewModel_.copy(*row.record());
        return true;
    }
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return false;
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!row.hasFocus()) return false;
            if (!event.isAutoRepeat()) viewModel_.open(*row.record());
            return true;
        case Qt::Key_Delete:
            if (!event.isAutoRepeat()) deleteRecord(row);
            return true;
        default:
            break;
    }
    const Index goal = target(event.key(), index);
    if (goal < 0) return false;
    moveTo(goal);
    return true;
}

// Where a key leads; -1 for keys that lead nowhere.
HistoryList::Index HistoryList::target(int key, Index from) const {
    const Index last = count() - 1;
    const int page = area_.viewport()->height() - spacing;
    const int above = rowFrame(from).top() - page;
    switch (key) {
        case Qt::Key_Up:
            return std::max<Index>(from - 1, 0);
        case Qt::Key_Down:
            return std::min(from + 1, last);
        case Qt::Key_Home:
            return 0;
        case Qt::Key_End:
            return last;
        case Qt::Key_PageUp:
            return above <= topMargin ? 0 : std::clamp<Index>(indexAt(above) + 1, 0, std::max<Index>(from - 1, 0));
        case Qt::Key_PageDown:
            return std::min(std::max(indexAt(rowFrame(from).top() + page), from + 1), last);
        default:
            return -1;
    }
}

// The row has the keyboard first: what follows it gets it then.
void HistoryList::deleteRecord(const HistoryRow& row) {
    const Uuid id = row.record()->id;
    moveTo(indexOf(id));
    viewModel_.deleteRecord(id);
}

void HistoryList::showMenu(HistoryRow& row, const QPoint& place) {
    auto* const menu = new OVMenu(environment(), this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // The entries keep the record: the row may be gone by the time that something is chosen.
    const auto& record = row.record();
    menu->add(QStringLiteral("打开"), OVMenu::Entry::available, [this, record] { viewModel_.open(*record); });
    menu->add(QStringLiteral("复制"), OVMenu::Entry::available, [this, record] { viewModel_.copy(*record); });
    menu->addSeparator();
    menu->add(QStringLiteral("删除"), OVMenu::Entry::available, [this, id = record->id] {
        if (const Index index = indexOf(id); index >= 0) deleteRecord(rowOf(index));
    });
    const std::array icons{OVIcon::panels, OVIcon::copy, OVIcon::trash};
    std::size_t next = 0;
    for (QAction* const action : menu->actions()) {
        if (!action->isSeparator()) menu->setItemIcon(*action, icons[next++]);
    }
    menu->popup(place);
}

}  // namespace ovrin
