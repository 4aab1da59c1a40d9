#include "windows/history_view_model.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "base/memory.h"
#include "base/text.h"
#include "storage/history_store.h"
#include "windows/copying.h"
#include "windows/result_presenter.h"

namespace ovrin {

namespace {

std::ptrdiff_t position(HistoryFilter filter) {
    return std::ranges::find(historyFilters, filter) - historyFilters.begin();
}

// Those of the list that are still among the present records, as they are by now.
HistoryRecords updated(const HistoryRecords& list, const HistoryRecords& present) {
    std::unordered_map<Uuid, const std::shared_ptr<const HistoryRecord>*> known;
    for (const auto& record : present) known.emplace(record->id, &record);
    HistoryRecords result;
    for (const auto& record : list) {
        if (const auto found = known.find(record->id); found != known.end()) result.push_back(*found->second);
    }
    return result;
}

}  // namespace

HistoryViewModel::HistoryViewModel(Services services)
    : services_(std::move(services)),
      dateTimes_(services_.environment),
      changes_(
          services_.history.records().onDidChange([this](const HistoryRecords& records) { recordsChanged(records); })),
      search_(services_.loop),
      refresh_(services_.loop) {
    recordsChanged(services_.history.records().value());
}

std::string HistoryViewModel::emptyHeadline() const {
    return searchText_->empty() ? "还没有历史记录" : "没有匹配的记录";
}

void HistoryViewModel::recordsChanged(const HistoryRecords& records) {
    canDeleteAll_.set(!records.empty());
    // What was deleted goes at once, whatever the search takes.
    found_ = updated(found_, records);
    showFound();
    search();
}

void HistoryViewModel::setSearchText(std::string text) {
    if (text == searchText_.value()) return;
    searchText_.set(std::move(text));
    search();
}

void HistoryViewModel::search() {
    if (!text::trimmed(searchText_.value()).empty()) {
        return search_.replace(runSearch(services_.history.searchFor(searchText_.value())));
    }
    search_.cancel();
    found_ = services_.history.records().value();
    showFound();
}

Task<void> HistoryViewModel::runSearch(HistorySearch search) {
    auto run = [search = std::move(search)](const std::stop_token& stop) { return search.run(stop); };
    found_ = co_await worker_.run(std::move(run));
    showFound();
}

void HistoryViewModel::selectFilter(HistoryFilter filter) {
    movesForward_ = position(filter) > position(selectedType_.value());
    selectedType_.set(filter);
    showFound();
}

void HistoryViewModel::showFound() {
    HistoryRecords visible;
    std::ranges::copy_if(found_, std::back_inserter(visible),
                         [this](const auto& record) { return passes(record->recordType, selectedType_.value()); });
    filtered_.set(std::move(visible));
}

void HistoryViewModel::open(const HistoryRecord& record) {
    services_.resultPanel.show(
        ResultPanelText{.text = record.sourceText, .translation = record.resultText.value_or("")});
}

void HistoryViewModel::copy(const HistoryRecord& record) {
    const bool hasResult = record.resultText && !record.resultText->empty();
    copyAndTell(hasResult ? *record.resultText : record.sourceText, "内容已复制", services_.clipboard,
                services_.toasts);
}

void HistoryViewModel::deleteRecord(const Uuid& id) {
    services_.history.deleteRecord(id);
}

void HistoryViewModel::askToDeleteAll() {
    if (canDeleteAll_.value()) confirmsDeleteAll_.set(true);
}

void HistoryViewModel::deleteAll() {
    confirmsDeleteAll_.set(false);
    services_.history.deleteAll();
}

void HistoryViewModel::setVisible(bool isVisible) {
    if (isVisible == (watch_ != nullptr)) return;
    if (!isVisible) {
        watch_.reset();
        // Reading and searching a long history takes a multiple of its size.
        worker_.post([](const std::stop_token&) { giveBackUnusedMemory(); });
        return;
    }
    const auto refresh = [this] { refresh_.replace(services_.history.refreshOn(worker_)); };
    watch_ = services_.files.watch(services_.history.fileURL(), refresh);
    refresh();
}

}  // namespace ovrin
