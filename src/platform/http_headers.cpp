#include "platform/http_headers.h"

#include <algorithm>

#include "base/text.h"

namespace ovrin {

void HTTPHeaders::set(std::string name, std::string value) {
    const auto found = std::ranges::find_if(
        entries_, [&](const Entry& entry) { return text::equalsIgnoringAsciiCase(entry.first, name); });
    if (found == entries_.end()) {
        entries_.emplace_back(std::move(name), std::move(value));
    } else {
        *found = {std::move(name), std::move(value)};
    }
}

std::string_view HTTPHeaders::value(std::string_view name) const {
    const auto found = std::ranges::find_if(
        entries_, [&](const Entry& entry) { return text::equalsIgnoringAsciiCase(entry.first, name); });
    return found == entries_.end() ? std::string_view() : found->second;
}

}  // namespace ovrin
