#include "storage/history_search.h"

#include <utility>

namespace ovrin {

HistorySearch::HistorySearch(HistoryRecords records, std::string_view query, text::CaseRules caseRules)
    : records_(std::move(records)), query_(query), caseRules_(caseRules) {}

HistoryRecords HistorySearch::run(const std::stop_token& stop) const {
    if (text::trimmed(query_).empty()) return records_;
    const text::CaseInsensitiveQuery wanted(query_, caseRules_);
    HistoryRecords found;
    for (const auto& record : records_) {
        if (stop.stop_requested()) break;
        const bool isFound =
            wanted.isFoundIn(record->sourceText) || (record->resultText && wanted.isFoundIn(*record->resultText));
        if (isFound) found.push_back(record);
    }
    return found;
}

}  // namespace ovrin
