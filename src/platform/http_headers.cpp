#include "platform/http_headers.h"

#include <algorithm>

namespace ovrin {

namespace {

char lowerCased(char character) {
    const bool isUpper = character >= 'A' && character <= 'Z';
    return isUpper ? static_cast<char>(character - 'A' + 'a') : character;
}

}  // namespace

bool isSameHeaderName(std::string_view first, std::string_view second) {
    return std::ranges::equal(first, second, {}, lowerCased, lowerCased);
}

void HTTPHeaders::set(std::string name, std::string value) {
    const auto found =
        std::ranges::find_if(entries_, [&](const Entry& entry) { return isSameHeaderName(entry.first, name); });
    if (found == entries_.end()) {
        entries_.emplace_back(std::move(name), std::move(value));
    } else {
        *found = {std::move(name), std::move(value)};
    }
}

std::string_view HTTPHeaders::value(std::string_view name) const {
    const auto found =
        std::ranges::find_if(entries_, [&](const Entry& entry) { return isSameHeaderName(entry.first, name); });
    return found == entries_.end() ? std::string_view() : found->second;
}

}  // namespace ovrin
