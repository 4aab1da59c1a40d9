// Scheme, host and port of a URL: what has to be equal for one server to be the other.
#pragma once

#include <optional>
#include <string>

namespace ovrin {

struct WebOrigin {
    std::string scheme;  // "http" or "https"
    std::string host;    // lower case; IPv6 addresses in brackets
    std::string port;    // the scheme's own when the URL names none

    bool operator==(const WebOrigin&) const = default;
};

// None when the text is no absolute http or https URL with a host.
std::optional<WebOrigin> webOrigin(const std::string& url);

// The absolute URL that a reference (of a Location header) means within the base URL; none when it means nothing.
std::optional<std::string> resolvedURL(const std::string& base, const std::string& reference);

}  // namespace ovrin
