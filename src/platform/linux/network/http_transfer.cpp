#include "platform/linux/network/http_transfer.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "base/text.h"
#include "platform/linux/network/transport_error.h"
#include "platform/linux/network/web_origin.h"

namespace ovrin {

namespace {

constexpr int maximumRedirects = 10;      // within one origin
constexpr int maximumHTTPSRedirects = 5;  // to whatever server
// The body of a redirect is read, so that its connection can be used again, up to this many bytes.
constexpr std::size_t maximumRedirectBody = 64U << 10U;
constexpr auto graceAfterDrop = std::chrono::milliseconds(10);
// Of all the headers that come before the body, in bytes.
constexpr std::size_t maximumHeaderSize = 128U << 10U;

// Frame the body on the wire: a value from outside would make the server read another request than was sent.
constexpr std::array<std::string_view, 3> transportHeaders{"Content-Length", "Transfer-Encoding", "Expect"};

bool isTransportHeader(std::string_view name) {
    return std::ranges::any_of(transportHeaders,
                               [&](std::string_view other) { return text::equalsIgnoringAsciiCase(name, other); });
}

bool isTokenCharacter(char character) {
    const bool isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    const bool isDigit = character >= '0' && character <= '9';
    return isLetter || isDigit || std::string_view("!#$%&'*+-.^_`|~").find(character) != std::string_view::npos;
}

bool isToken(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, isTokenCharacter);
}

bool isHeaderValue(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

// "HTTP/1.1 200 OK" gives 200.
std::optional<int> statusCode(std::string_view statusLine) {
    const auto space = statusLine.find(' ');
    if (space == std::string_view::npos) return std::nullopt;
    const std::string_view digits = statusLine.substr(space + 1);
    int status = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), status);
    if (failure != std::errc()) return std::nullopt;
    return status;
}

long milliseconds(EventLoop::Duration duration) {
    const auto rounded = std::chrono::ceil<std::chrono::milliseconds>(duration).count();
    return std::clamp<long>(rounded, 1, std::numeric_limits<int>::max());
}

}  // namespace

HTTPTransfer::HTTPTransfer(NetworkLoop& loop, Settings settings, HTTPRequest request, StreamWriter<HTTPResponse> head,
                           StreamWriter<std::string> body)
    : loop_(loop),
      settings_(std::move(settings)),
      request_(std::move(request)),
      head_(std::move(head)),
      body_(std::move(body)),
      url_(request_.url) {}

HTTPTransfer::~HTTPTransfer() {
    stopWatching();
}

void HTTPTransfer::start() {
    if (body_.stopToken().stop_requested()) return;
    try {
        prepareHandle();
    } catch (const Error& error) {
        return fail(error);
    }
    onDropped_.emplace(body_.stopToken(), [this, weak = weak_from_this()] {
        loop_.post([weak] {
            if (const auto self = weak.lock()) self->handleDrop();
        });
    });
    loop_.add(handle_.get(), shared_from_this());
    lastActivity_ = loop_.now();
    expectActivity(request_.timeout);
}

template <typename Value>
void HTTPTransfer::set(CURLoption option, Value value) {
    const CURLcode code = curl_easy_setopt(handle_.get(), option, value);
    if (code != CURLE_OK) throw transportError(code, handle_.get(), host_);
}

void HTTPTransfer::prepareHandle() {
    const auto origin = webOrigin(url_);
    const bool isOpenToAny = request_.redirects == HTTPRedirects::anyHTTPS;
    if (!origin || (isOpenToAny && origin->scheme != "https")) throw invalidURLError();
    assert((!isOpenToAny || (request_.body.empty() && request_.headers.begin() == request_.headers.end())) &&
           "headers and bodies are not for any server");
    host_ = origin->host;
    handle_.reset(curl_easy_init());
    if (!handle_) throw std::bad_alloc();
    prepareConnection();
    prepareMethodAndBody();
    prepareHeaders();
    set(CURLOPT_HEADERFUNCTION, &didReceiveHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &didReceiveBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_XFERINFOFUNCTION, &didProgress);
    set(CURLOPT_XFERINFODATA, this);
    set(CURLOPT_NOPROGRESS, 0L);
}

void HTTPTransfer::prepareConnection() {
    set(CURLOPT_URL, url_.c_str());
    set(CURLOPT_PROTOCOLS_STR, request_.redirects == HTTPRedirects::anyHTTPS ? "https" : "http,https");
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    set(CURLOPT_HTTP09_ALLOWED, 0L);
    set(CURLOPT_FOLLOWLOCATION, 0L);  // followRedirect() knows which of them may be followed
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_TCP_NODELAY, 1L);
    // A name that resolves slowly must not hold the loop up when its request is cancelled.
    set(CURLOPT_QUICK_EXIT, 1L);
    // The whole of the connecting is one silence. Told to curl too, because it divides the time among addresses.
    set(CURLOPT_CONNECTTIMEOUT_MS, milliseconds(request_.timeout));
    if (request_.proxies == HTTPProxies::none) set(CURLOPT_PROXY, "");
    if (!settings_.caFile.empty()) set(CURLOPT_CAINFO, settings_.caFile.c_str());
}

void HTTPTransfer::prepareMethodAndBody() {
    if (!isToken(request_.method)) throw invalidMethodError();
    if (request_.method == "HEAD") {
        set(CURLOPT_NOBODY, 1L);
        return;
    }
    if (request_.method == "POST" || !request_.body.empty()) {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
        set(CURLOPT_POSTFIELDS, request_.body.c_str());  // not copied
    }
    set(CURLOPT_CUSTOMREQUEST, request_.method.c_str());
}

void HTTPTransfer::prepareHeaders() {
    set(CURLOPT_USERAGENT, settings_.userAgent.c_str());
    set(CURLOPT_ACCEPT_ENCODING, "");  // every coding that curl can undo
    addHeader("Expect:");
    // Only what the request says: curl would call every body a form.
    if (request_.headers.value("Content-Type").empty()) addHeader("Content-Type:");
    for (const auto& [name, value] : request_.headers) {
        if (!isToken(name)) throw invalidHeaderNameError(name);
        if (!isHeaderValue(value)) throw invalidHeaderValueError(name);
        if (isTransportHeader(name)) continue;
        std::string line = name;
        if (value.empty()) {
            line += ';';  // in curl's language a header without a value
        } else {
            line.append(": ").append(value);
        }
        addHeader(line);
    }
    set(CURLOPT_HTTPHEADER, headers_.get());
}

void HTTPTransfer::addHeader(const std::string& line) {
    curl_slist* const extended = curl_slist_append(headers_.get(), line.c_str());
    if (!extended) throw std::bad_alloc();
    static_cast<void>(headers_.release());
    headers_.reset(extended);
}

std::size_t HTTPTransfer::didReceiveHeader(const char* data, std::size_t size, std::size_t count, void* transfer) {
    auto& self = *static_cast<HTTPTransfer*>(transfer);
    const std::size_t length = size * count;
    self.headerSize_ += length;
    if (self.headerSize_ > maximumHeaderSize) return 0;  // ends the transfer
    self.handleHeaderLine({data, length});
    return length;
}

std::size_t HTTPTransfer::didReceiveBody(const char* data, std::size_t size, std::size_t count, void* transfer) {
    auto& self = *static_cast<HTTPTransfer*>(transfer);
    const std::size_t length = size * count;
    if (self.redirectTarget_) {
        self.discardedBody_ += length;
        return self.discardedBody_ > maximumRedirectBody ? 0 : length;  // 0 ends the transfer
    }
    if (length > 0) self.body_.push(std::string(data, length));
    return length;
}

int HTTPTransfer::didProgress(void* transfer, curl_off_t /*total*/, curl_off_t received, curl_off_t /*toSend*/,
                              curl_off_t sent) {
    auto& self = *static_cast<HTTPTransfer*>(transfer);
    const curl_off_t progress = received + sent;
    if (std::exchange(self.progress_, progress) != progress) self.lastActivity_ = self.loop_.now();
    return 0;
}

// Interim responses, and the trailers of a chunked body, come the same way.
void HTTPTransfer::handleHeaderLine(std::string_view line) {
    lastActivity_ = loop_.now();
    if (isHeadDelivered_) return;
    if (line.starts_with("HTTP/")) {
        response_ = {};
        response_.statusCode = statusCode(line);
    } else if (text::trimmed(line).empty()) {
        handleEndOfHeaders();
    } else if (const auto colon = line.find(':'); colon != std::string_view::npos) {
        response_.headers.set(std::string(text::trimmed(line.substr(0, colon))),
                              std::string(text::trimmed(line.substr(colon + 1))));
    }
}

void HTTPTransfer::handleEndOfHeaders() {
    const bool isInterim = response_.statusCode && *response_.statusCode < 200;
    if (isInterim) return;
    redirectTarget_ = redirectTarget();
    if (!redirectTarget_) deliverHead(std::move(response_));
}

// None when the response is the caller's.
std::optional<std::string> HTTPTransfer::redirectTarget() const {
    const int status = response_.statusCode.value_or(0);
    const bool isRepeatable = request_.method == "GET" || request_.method == "HEAD";
    const bool repeatsRequest =
        status == 307 || status == 308 || (isRepeatable && (status == 301 || status == 302 || status == 303));
    const std::string location(response_.headers.value("Location"));
    const bool mayFollow = request_.redirects != HTTPRedirects::none;
    if (!mayFollow || !repeatsRequest || location.empty()) return std::nullopt;
    auto target = resolvedURL(url_, location);
    if (request_.redirects == HTTPRedirects::anyHTTPS) return target.value_or(location);
    if (!target || webOrigin(*target) != webOrigin(url_)) return std::nullopt;
    return target;
}

void HTTPTransfer::followRedirect() {
    const bool isOpenToAny = request_.redirects == HTTPRedirects::anyHTTPS;
    if (++redirectCount_ > (isOpenToAny ? maximumHTTPSRedirects : maximumRedirects)) {
        return fail(tooManyRedirectsError());
    }
    url_ = *std::exchange(redirectTarget_, std::nullopt);
    if (isOpenToAny) {
        const auto origin = webOrigin(url_);
        if (!origin || origin->scheme != "https") return fail(insecureRedirectError());
        host_ = origin->host;
    }
    discardedBody_ = 0;
    headerSize_ = 0;
    progress_ = 0;
    lastActivity_ = loop_.now();
    set(CURLOPT_URL, url_.c_str());
    loop_.add(handle_.get(), shared_from_this());
}

void HTTPTransfer::deliverHead(HTTPResponse response) {
    isHeadDelivered_ = true;
    head_.push(std::move(response));
    head_.finish();
}

void HTTPTransfer::didEnd(CURLcode result) {
    if (redirectTarget_) return followRedirect();
    if (headerSize_ > maximumHeaderSize) return fail(headersTooLongError());
    const bool isNoHTTP =
        result == CURLE_OK || result == CURLE_UNSUPPORTED_PROTOCOL || result == CURLE_WEIRD_SERVER_REPLY;
    if (!isHeadDelivered_ && isNoHTTP) {
        result = CURLE_OK;
        deliverHead({});
    }
    if (result != CURLE_OK) return fail(transportError(result, handle_.get(), host_));
    stopWatching();
    body_.finish();
}

// Readers drop an answer at its end mark, when the end of the body is on its way at most: it is waited for shortly,
// because only a connection that was read to the end of a body can serve the next request.
void HTTPTransfer::handleDrop() {
    if (!isHeadDelivered_) return loop_.remove(handle_.get());
    stopWatching();
    timer_ = loop_.postAfter(graceAfterDrop, [this] { loop_.remove(handle_.get()); });
}

void HTTPTransfer::expectActivity(EventLoop::Duration delay) {
    timer_ = loop_.postAfter(delay, [this] { handleSilence(); });
}

// The timer is not moved at every byte: when it is due, it waits for what is left since the last one.
void HTTPTransfer::handleSilence() {
    const auto keepAlive = shared_from_this();
    timer_.reset();
    const EventLoop::Duration silence = loop_.now() - lastActivity_;
    if (silence < request_.timeout) return expectActivity(request_.timeout - silence);
    loop_.remove(handle_.get());
    fail(timeoutError());
}

void HTTPTransfer::stopWatching() {
    onDropped_.reset();
    if (timer_) loop_.cancelTimer(*std::exchange(timer_, std::nullopt));
}

void HTTPTransfer::fail(const Error& error) {
    stopWatching();
    if (!isHeadDelivered_) head_.fail(std::make_exception_ptr(error));
    body_.fail(std::make_exception_ptr(error));
}

}  // namespace ovrin
