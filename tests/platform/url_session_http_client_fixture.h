// What the tests of the HTTP client share: requests, scripts of servers, and a client with its loop.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "base/environment.h"
#include "base/run_loop.h"
#include "fakes/loopback_server.h"
#include "platform/linux/network/url_session_http_client.h"

namespace ovrin {

using Connection = LoopbackServer::Connection;

inline constexpr const char* streamHead = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n";

// How a streamed request ended, and what had arrived until then.
struct Outcome {
    std::optional<HTTPResponse> response;
    std::string body;
    std::string error;

    std::optional<int> status() const { return response ? response->statusCode : std::nullopt; }
};

inline Task<Outcome> fetch(HTTPClientProtocol& client, HTTPRequest request, std::function<void()> didReceive) {
    Outcome outcome;
    try {
        HTTPBytes bytes = co_await client.bytes(std::move(request));
        outcome.response = bytes.response;
        while (true) {
            const std::optional<std::string> chunk = co_await bytes.body.next();
            if (!chunk) break;
            outcome.body += *chunk;
            if (didReceive) didReceive();
        }
    } catch (const Error& error) {
        outcome.error = error.errorDescription();
    }
    co_return outcome;
}

// Opens a response, reads one chunk and drops the rest.
inline Task<std::string> firstChunk(HTTPClientProtocol& client, HTTPRequest request) {
    HTTPBytes bytes = co_await client.bytes(std::move(request));
    std::optional<std::string> chunk = co_await bytes.body.next();
    co_return chunk.value_or("");
}

inline HTTPRequest get(std::string url) {
    HTTPRequest request;
    request.url = std::move(url);
    return request;
}

inline HTTPRequest post(std::string url, std::string body) {
    HTTPRequest request = get(std::move(url));
    request.method = "POST";
    request.body = std::move(body);
    return request;
}

inline HTTPRequest withKey(HTTPRequest request) {
    request.headers.set("Authorization", "Bearer secret-key");
    request.headers.set("x-api-key", "secret-key");
    return request;
}

inline LoopbackServer::Script answering(std::string bytes) {
    return [bytes = std::move(bytes)](Connection& connection) {
        connection.readRequest();
        connection.send(bytes);
    };
}

// Serves one request after the other on a connection.
inline LoopbackServer::Script alwaysAnswering(std::string bytes) {
    return [bytes = std::move(bytes)](Connection& connection) {
        while (!connection.readRequest().empty()) connection.send(bytes);
    };
}

inline std::string fromHex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        bytes.push_back(static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
    }
    return bytes;
}

inline long descriptorCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

class URLSessionHTTPClientTest : public testing::Test {
protected:
    URLSessionHTTPClientTest() {
        for (const char* name :
             {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTPS_PROXY", "ALL_PROXY", "NO_PROXY"}) {
            unsetenv(name);
        }
    }

    Outcome outcome(HTTPRequest request, std::function<void()> didReceive = {}) {
        return loop.complete(fetch(client, std::move(request), std::move(didReceive)));
    }
    HTTPData data(HTTPRequest request) { return loop.complete(client.data(std::move(request))); }

    RunLoop loop;
    URLSessionHTTPClient client{Environment()};
};

}  // namespace ovrin
