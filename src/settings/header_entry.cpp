#include "settings/header_entry.h"

#include <algorithm>
#include <utility>

#include "model/deep_seek_error.h"

namespace ovrin {
namespace {

bool isEmpty(const HeaderEntry& row) {
    return text::trimmed(row.name).empty() && text::trimmed(row.value).empty();
}

std::vector<std::pair<std::string, std::string>> contents(const std::vector<HeaderEntry>& rows) {
    std::vector<std::pair<std::string, std::string>> contents;
    for (const HeaderEntry& row : rows) {
        if (!isEmpty(row)) contents.emplace_back(row.name, row.value);
    }
    return contents;
}

}  // namespace

std::vector<HeaderEntry> headerRows(const Headers& headers, const text::CaseInsensitiveOrder& order) {
    std::vector<HeaderEntry> rows;
    for (const auto& [name, value] : headers) rows.push_back({.id = Uuid::random(), .name = name, .value = value});
    std::ranges::sort(rows, [&](const HeaderEntry& first, const HeaderEntry& second) {
        const int comparison = order.compare(first.name, second.name);
        return comparison != 0 ? comparison < 0 : first.id < second.id;
    });
    return rows;
}

Headers headersOf(const std::vector<HeaderEntry>& rows) {
    std::map<std::string, std::pair<std::string, std::string>> kept;  // by the name in lower case
    for (const HeaderEntry& row : rows) {
        if (isEmpty(row)) continue;
        const std::string name(text::trimmed(row.name));
        const std::string value(text::trimmed(row.value));
        if (name.empty() || value.empty()) throw DeepSeekError::invalidHeader(name);
        kept[text::lowercased(name)] = {name, value};
    }
    Headers headers;
    for (auto& [lowercased, header] : kept) headers.insert(std::move(header));
    return headers;
}

bool SameHeaderRows::operator()(const std::vector<HeaderEntry>& first, const std::vector<HeaderEntry>& second) const {
    return contents(first) == contents(second);
}

}  // namespace ovrin
