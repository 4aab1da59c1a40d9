#include "platform/linux/network/web_origin.h"

#include <memory>
#include <new>

#include <curl/curl.h>

#include "base/text.h"

namespace ovrin {

namespace {

class ParsedURL {
public:
    ParsedURL() : handle_(curl_url(), curl_url_cleanup) {
        if (!handle_) throw std::bad_alloc();
    }

    // A relative URL is taken as one within what was set before.
    bool set(const std::string& url) {
        return url.find('\0') == std::string::npos &&
               curl_url_set(handle_.get(), CURLUPART_URL, url.c_str(), CURLU_PATH_AS_IS | CURLU_URLENCODE) == CURLUE_OK;
    }

    std::string part(CURLUPart part, unsigned int flags = 0) const {
        char* text = nullptr;
        if (curl_url_get(handle_.get(), part, &text, flags) != CURLUE_OK) return {};
        const std::unique_ptr<char, decltype(&curl_free)> owner(text, curl_free);
        return text;
    }

private:
    std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> handle_;
};

}  // namespace

std::optional<WebOrigin> webOrigin(const std::string& url) {
    ParsedURL parsed;
    if (!parsed.set(url)) return std::nullopt;
    WebOrigin origin{.scheme = parsed.part(CURLUPART_SCHEME),
                     .host = text::asciiLowercased(parsed.part(CURLUPART_HOST)),
                     .port = parsed.part(CURLUPART_PORT, CURLU_DEFAULT_PORT)};
    if ((origin.scheme != "http" && origin.scheme != "https") || origin.host.empty()) return std::nullopt;
    return origin;
}

std::optional<std::string> resolvedURL(const std::string& base, const std::string& reference) {
    ParsedURL parsed;
    if (!parsed.set(base) || !parsed.set(reference)) return std::nullopt;
    return parsed.part(CURLUPART_URL);
}

}  // namespace ovrin
