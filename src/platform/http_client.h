// Seam: the one way to the network. A request gives its whole body, or its body as it arrives.
//
// Both operations may be awaited on any loop; calls are independent of each other. A failure before a response arrives
// throws Error with a sentence that a person understands ("找不到服务器 example.com。"); it never contains header
// values or the request body. HTTP error statuses are no failures. Stopping the awaiting task, or dropping the stream
// of a body, ends the request and closes its connection within milliseconds; a stopped call throws CancellationError. A
// body that is dropped when its last bytes are already on their way (answers are dropped at their end mark) may be read
// to its end in those milliseconds, so that the connection serves the next request.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "base/async_stream.h"
#include "base/task.h"
#include "platform/http_headers.h"

namespace ovrin {

// Which redirects a request follows. Only such as repeat the request: 307 and 308; for GET and HEAD also 301, 302, 303.
enum class HTTPRedirects : std::uint8_t {
    // To the same scheme, host and port: keys and bodies stay with the server that they are meant for. Any other
    // redirect is the response.
    sameOrigin,
    // To any https server, at most five in a row; one to anything else fails. For requests over https that carry
    // neither headers nor a body.
    anyHTTPS,
    // None: every redirect is the response.
    none,
};

// Whether the proxies that the process's environment names may carry a request.
enum class HTTPProxies : std::uint8_t { ofEnvironment, none };

struct HTTPRequest {
    std::string url;  // absolute; http or https
    std::string method = "GET";
    HTTPHeaders headers;
    std::string body;
    HTTPRedirects redirects = HTTPRedirects::sameOrigin;
    HTTPProxies proxies = HTTPProxies::ofEnvironment;
    // The longest silence: how long to wait for the next byte (of the connection, the response, its body).
    std::chrono::nanoseconds timeout = std::chrono::seconds(60);
};

struct HTTPResponse {
    std::optional<int> statusCode;  // none when what answered does not speak HTTP
    HTTPHeaders headers;

    bool isSuccess() const { return statusCode && *statusCode >= 200 && *statusCode <= 299; }
};

// Bounds of the memory that a body may take when it is collected.
inline constexpr std::size_t maximumBodySize = std::size_t{64} << 20U;      // of a successful response, in bytes
inline constexpr std::size_t maximumErrorBodySize = std::size_t{1} << 20U;  // of any other response, in bytes

struct HTTPData {
    std::string body;  // decoded from its transfer and content codings
    HTTPResponse response;
};

struct HTTPBytes {
    // The decoded body in chunks of any size, none of them empty, as they arrive. Ends with Error (a description as
    // above) when the body fails before its end.
    AsyncStream<std::string> body;
    HTTPResponse response;
};

class HTTPClientProtocol {
public:
    virtual ~HTTPClientProtocol() = default;

    // The whole body. One that is longer than the bounds above is cut there and the request ended.
    virtual Task<HTTPData> data(HTTPRequest request) = 0;

    // Gives the response as soon as its headers have arrived.
    virtual Task<HTTPBytes> bytes(HTTPRequest request) = 0;
};

}  // namespace ovrin
