// The custom request headers as rows that are edited one by one.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/text.h"
#include "base/uuid.h"

namespace ovrin {

struct HeaderEntry {
    Uuid id;            // what identifies the row
    std::string name;   // as typed
    std::string value;  // as typed

    bool operator==(const HeaderEntry&) const = default;
};

using Headers = std::map<std::string, std::string>;  // name to value

// One row for each header, by name in the given order, then by id.
std::vector<HeaderEntry> headerRows(const Headers& headers, const text::CaseInsensitiveOrder& order);

// The headers that the rows stand for: trimmed, empty rows left out, of names that differ only in case the lower row.
// Throws DeepSeekError invalidHeader for a row of which one side is empty.
Headers headersOf(const std::vector<HeaderEntry>& rows);

// Whether two lists say the same, whatever their ids and empty rows.
struct SameHeaderRows {
    bool operator()(const std::vector<HeaderEntry>& first, const std::vector<HeaderEntry>& second) const;
};

}  // namespace ovrin
