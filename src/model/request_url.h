// The address of a request: an absolute http or https URL with a host, parsed by libcurl's URL parser.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ovrin {

class RequestURL {
public:
    // None when the text is no such URL. Characters that need it are percent-encoded; all else stays as written.
    static std::optional<RequestURL> parse(std::string_view text);

    // True when the path, trailing slashes and letter case aside, ends with the text.
    bool pathEndsWith(std::string_view suffix) const;

    // The same URL, query included, with one more path component (which may hold slashes itself).
    RequestURL appendingPathComponent(std::string_view component) const;

    const std::string& string() const { return string_; }

private:
    RequestURL(std::string string, std::string path) : string_(std::move(string)), path_(std::move(path)) {}

    std::string string_;
    std::string path_;
};

}  // namespace ovrin
