// One search through the history as it was when it was asked for. Immutable: it may run on any thread. No record is
// copied for it.
#pragma once

#include <stop_token>
#include <string>
#include <string_view>

#include "base/text.h"
#include "storage/history_format.h"

namespace ovrin {

class HistorySearch {
public:
    HistorySearch(HistoryRecords records, std::string_view query, text::CaseRules caseRules);

    // The records whose source or result contains the query as it is, letter case aside, in their order; all of them
    // for a blank query. Ends early, with what it has, when it is told to stop.
    HistoryRecords run(const std::stop_token& stop = {}) const;

private:
    HistoryRecords records_;
    std::string query_;
    text::CaseRules caseRules_;
};

}  // namespace ovrin
