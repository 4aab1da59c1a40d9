// The history as it is written down: a JSON array of records, newest first. Any thread.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "storage/history_record.h"

namespace ovrin {

// Records are shared and never change: a list costs little to copy, and one that another thread reads stays as it is.
using HistoryRecords = std::vector<std::shared_ptr<const HistoryRecord>>;

// None when the document is no array of records, or one of them lacks anything but its result. The newest come first;
// records of the same second keep the order of the document.
std::optional<HistoryRecords> decodedHistory(std::string_view document);

// Compact JSON; times in whole seconds, malformed text repaired.
std::string encodedHistory(const HistoryRecords& records);

}  // namespace ovrin
