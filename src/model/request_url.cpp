#include "model/request_url.h"

#include <memory>
#include <new>
#include <utility>

#include <curl/curl.h>

#include "base/text.h"

namespace ovrin {

namespace {

// Dot segments stay: a proxy in front of a service may give them a meaning.
constexpr unsigned int parseFlags = CURLU_URLENCODE | CURLU_PATH_AS_IS;

class Parser {
public:
    Parser() : handle_(curl_url(), curl_url_cleanup) {
        if (!handle_) throw std::bad_alloc();
    }

    bool set(const std::string& url) {
        return curl_url_set(handle_.get(), CURLUPART_URL, url.c_str(), parseFlags) == CURLUE_OK;
    }

    std::string get(CURLUPart part) const {
        char* text = nullptr;
        if (curl_url_get(handle_.get(), part, &text, 0) != CURLUE_OK) return {};
        const std::unique_ptr<char, decltype(&curl_free)> owner(text, curl_free);
        return text;
    }

private:
    std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> handle_;
};

// The length of "http" or "https" at the start, when "://" and something other than a third slash follow (the parser
// would forgive one slash or three and take a path for the host); 0 otherwise.
std::size_t schemeLength(std::string_view text) {
    const auto length = text.find("://");
    if (length == std::string_view::npos) return 0;
    const std::string scheme = text::asciiLowercased(text.substr(0, length));
    if (scheme != "http" && scheme != "https") return 0;
    const auto rest = text.substr(length + 3);
    return rest.empty() || rest.front() == '/' ? 0 : length;
}

// The parser gives the scheme in lower case; the URL keeps the spelling that was entered.
std::string withSchemeOf(std::string_view original, const std::string& url) {
    const auto length = original.find(':');
    return std::string(original.substr(0, length)) + url.substr(url.find(':'));
}

}  // namespace

std::optional<RequestURL> RequestURL::parse(std::string_view text) {
    if (schemeLength(text) == 0 || text.find('\0') != std::string_view::npos) return std::nullopt;
    Parser parser;
    if (!parser.set(std::string(text))) return std::nullopt;
    std::string host = parser.get(CURLUPART_HOST);
    if (host.empty()) return std::nullopt;
    const std::string url = parser.get(CURLUPART_URL);
    if (url.empty()) return std::nullopt;
    return RequestURL(withSchemeOf(text, url), std::move(host), parser.get(CURLUPART_PATH));
}

bool RequestURL::pathEndsWith(std::string_view suffix) const {
    const auto end = path_.find_last_not_of('/');
    const std::string path =
        text::asciiLowercased(std::string_view(path_).substr(0, end == std::string::npos ? 0 : end + 1));
    return path.ends_with(text::asciiLowercased(suffix));
}

RequestURL RequestURL::removingPathSuffix(std::string_view suffix) const {
    if (!pathEndsWith(suffix)) return *this;
    return withPath(path_.substr(0, path_.find_last_not_of('/') + 1 - suffix.size()));
}

RequestURL RequestURL::appendingPathComponent(std::string_view component) const {
    const auto end = path_.find_last_not_of('/');
    std::string path = path_.substr(0, end == std::string::npos ? 0 : end + 1);
    path.append("/").append(component);
    return withPath(std::move(path));
}

// The path is cut out and put in as text: the parser would turn the percent escapes of a path that it is given alone
// into lower case.
RequestURL RequestURL::withPath(std::string path) const {
    std::string url = string_;
    const auto authority = url.find("://") + 3;
    url.replace(url.find('/', authority), path_.size(), path);
    return {std::move(url), host_, std::move(path)};
}

}  // namespace ovrin
