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

    // The same URL, query included, without the text at the end of its path, where it stands there.
    RequestURL removingPathSuffix(std::string_view suffix) const;

    // The same URL, query included, with one more path component (which may hold slashes itself).
    RequestURL appendingPathComponent(std::string_view component) const;

    const std::string& string() const { return string_; }
    // As the parser reads it: numeric addresses in their usual form, IPv6 ones in brackets without a zone.
    const std::string& host() const { return host_; }

private:
    RequestURL(std::string string, std::string host, std::string path)
        : string_(std::move(string)), host_(std::move(host)), path_(std::move(path)) {}

    RequestURL withPath(std::string path) const;

    std::string string_;
    std::string host_;
    std::string path_;
};

}  // namespace ovrin
