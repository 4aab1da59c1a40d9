// The headers of an HTTP request or response: in order, one value a name, names compared without regard to ASCII case.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ovrin {

class HTTPHeaders {
public:
    using Entry = std::pair<std::string, std::string>;  // name as given, value

    // Puts the header in, in place of one of the same name.
    void set(std::string name, std::string value);

    // The value of the header; empty when there is none.
    std::string_view value(std::string_view name) const;

    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

    bool operator==(const HTTPHeaders&) const = default;

private:
    std::vector<Entry> entries_;
};

}  // namespace ovrin
