#include "views/settings/header_rows.h"

#include <QVBoxLayout>
#include <algorithm>

#include "settings/settings_store.h"
#include "views/settings/header_row.h"

namespace ovrin {

namespace {
constexpr int rowGap = 8;
}

HeaderRows::HeaderRows(ViewEnvironment& environment, SettingsStore& store, QWidget* parent)
    : OVWidget(environment, parent), store_(store), column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(rowGap);
}

HeaderRow* HeaderRows::makeRow(const Uuid& id) {
    auto* row = new HeaderRow(environment(), id);
    row->setNamePlaceholder(namePlaceholder_);
    connect(row, &HeaderRow::nameEdited, this,
            [this, id](const QString& name) { store_.editHeaderName(id, name.toStdString()); });
    connect(row, &HeaderRow::valueEdited, this,
            [this, id](const QString& value) { store_.editHeaderValue(id, value.toStdString()); });
    connect(row, &HeaderRow::removeRequested, this, [this, id] { remove(id); });
    return row;
}

void HeaderRows::show(const std::vector<HeaderEntry>& headers) {
    std::vector<HeaderRow*> before = std::move(rows_);
    rows_.clear();
    for (const HeaderEntry& header : headers) {
        const auto known = std::ranges::find(before, header.id, [](const HeaderRow* row) { return row->id(); });
        HeaderRow* row = nullptr;
        if (known != before.end()) {
            row = *known;
            before.erase(known);
        } else {
            row = makeRow(header.id);
        }
        const int place = static_cast<int>(rows_.size());
        if (column_->indexOf(row) != place) column_->insertWidget(place, row);
        rows_.push_back(row);
        row->setNumber(place + 1);
        row->show(header);
    }
    for (HeaderRow* const gone : before) {
        gone->hide();
        gone->deleteLater();  // it may be handling the very click that removes it
    }
    setVisible(!rows_.empty());
    orderTabs();
}

// The toolkit puts what is made later last.
void HeaderRows::orderTabs() {
    if (!isVisible() || tabPredecessor_ == nullptr) return;
    QWidget* before = tabPredecessor_;
    for (HeaderRow* const row : rows_) before = &row->followInTabOrder(*before);
}

void HeaderRows::showEvent(QShowEvent* /*event*/) {
    orderTabs();
}

// The keyboard goes on to the line that takes the place of the removed one.
void HeaderRows::remove(const Uuid& id) {
    const auto gone = std::ranges::find(rows_, id, [](const HeaderRow* row) { return row->id(); });
    const auto place = static_cast<std::size_t>(gone - rows_.begin());
    const bool hadKeyboard = gone != rows_.end() && (*gone)->isAncestorOf(focusWidget() ? focusWidget() : this);
    store_.removeHeader(id);
    if (!hadKeyboard) return;
    if (rows_.empty()) {
        emit emptied();
    } else {
        rows_.at(std::min(place, rows_.size() - 1))->focusRemoveButton();
    }
}

void HeaderRows::setNamePlaceholder(const QString& placeholder) {
    namePlaceholder_ = placeholder;
    for (HeaderRow* const row : rows_) row->setNamePlaceholder(placeholder);
}

void HeaderRows::focusLast() {
    if (!rows_.empty()) rows_.back()->focusName();
}

}  // namespace ovrin
