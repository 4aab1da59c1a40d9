#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/url_session_http_client_fixture.h"

using namespace std::chrono_literals;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace ovrin {
namespace {

using Request = URLSessionHTTPClientTest;
using Response = URLSessionHTTPClientTest;
using Redirects = URLSessionHTTPClientTest;

TEST_F(Request, CarriesMethodHeadersAndBodyAsGiven) {
    LoopbackServer server(alwaysAnswering(httpResponse("ok")));
    HTTPRequest request = withKey(post(server.url("/v1/chat?x=%2F"), "{\"a\":1}"));
    request.headers.set("Content-Type", "application/json");
    request.headers.set("X-Empty", "");
    EXPECT_EQ(data(std::move(request)).body, "ok");
    const std::string sent = server.requests().at(0);
    EXPECT_THAT(sent, AllOf(StartsWith("POST /v1/chat?x=%2F HTTP/1.1\r\n"), EndsWith("\r\n\r\n{\"a\":1}")));
    EXPECT_THAT(sent, AllOf(HasSubstr("\r\nAuthorization: Bearer secret-key\r\n"), HasSubstr("\r\nx-api-key: "),
                            HasSubstr("\r\nContent-Type: application/json\r\n"), HasSubstr("\r\nX-Empty:\r\n"),
                            HasSubstr("\r\nUser-Agent: Ovrin/"), HasSubstr("gzip")));
}

TEST_F(Request, LeavesTheFramingOfTheBodyToTheTransport) {
    LoopbackServer server([](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 100 Continue\r\n\r\n" + httpResponse("ok"));
    });
    const std::string body(2'000'000, 'x');
    HTTPRequest request = post(server.url(), body);
    request.headers.set("content-length", "3");
    request.headers.set("Transfer-Encoding", "chunked");
    request.headers.set("Expect", "100-continue");
    EXPECT_EQ(data(std::move(request)).body, "ok");
    const std::string sent = server.requests().at(0);
    EXPECT_THAT(sent, EndsWith("\r\n\r\n" + body));
    const std::string head = sent.substr(0, sent.size() - body.size());
    EXPECT_THAT(head, AllOf(HasSubstr("Content-Length: 2000000\r\n"), Not(HasSubstr("chunked")),
                            Not(HasSubstr("Expect")), Not(HasSubstr("Content-Type"))));
}

TEST_F(Request, RefusesWhatWouldInjectAHeaderWithoutShowingIt) {
    LoopbackServer server(answering(httpResponse("ok")));
    struct Header {
        std::string name;
        std::string value;
        std::string error;
    };
    for (const Header& header : {Header{"X-A", "secret\r\nX-Evil: 1", "Header“X-A”的值不符合 HTTP。"},
                                 Header{"X Key: secret\r\nX-Evil", "1", "Header“X Key”的名称不符合 HTTP。"},
                                 Header{"", "secret", "Header 的名称不符合 HTTP。"}}) {
        HTTPRequest request = get(server.url());
        request.headers.set(header.name, header.value);
        EXPECT_EQ(outcome(std::move(request)).error, header.error);
    }
    HTTPRequest request = get(server.url());
    request.method = "GET / HTTP/1.1\r\nX-Evil: 1\r\n";
    EXPECT_NE(outcome(std::move(request)).error, "");
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(Request, OnlyHTTPAddressesAreUsed) {
    for (const char* url : {"file:///etc/passwd", "ftp://127.0.0.1/", "", "http://", "127.0.0.1", "http://a b/"}) {
        EXPECT_EQ(outcome(get(url)).error, "请求的地址无效。") << url;
    }
}

TEST_F(Request, TakesTheProxyFromTheEnvironment) {
    LoopbackServer proxy(answering(httpResponse("by proxy")));
    const std::string address = proxy.url("");
    setenv("http_proxy", address.c_str(), 1);
    EXPECT_EQ(data(get("http://service.test/path")).body, "by proxy");
    LoopbackServer server(answering(httpResponse("straight")));
    HTTPRequest request = get(server.url());
    request.proxies = HTTPProxies::none;
    EXPECT_EQ(data(request).body, "straight");
    unsetenv("http_proxy");
    EXPECT_THAT(proxy.requests().at(0), StartsWith("GET http://service.test/path HTTP/1.1\r\n"));
}

TEST_F(Request, AProxyNeverSeesTheKeyOfASecureRequest) {
    LoopbackServer proxy(answering(httpResponse("no", "407 Proxy Authentication Required")));
    const std::string address = proxy.url("");
    setenv("https_proxy", address.c_str(), 1);
    EXPECT_EQ(outcome(withKey(post("https://service.test/path", "body"))).error, "代理服务器拒绝了连接（HTTP 407）。");
    unsetenv("https_proxy");
    EXPECT_THAT(proxy.requests().at(0), AllOf(StartsWith("CONNECT service.test:443 "), Not(HasSubstr("secret"))));
}

TEST_F(Response, PiecesArriveWhileTheServerStillWaits) {
    std::binary_semaphore received(0);
    LoopbackServer server([&](Connection& connection) {
        connection.readRequest();
        connection.send(streamHead);
        for (const char character : std::string("早上好")) {  // cut inside its characters
            connection.send({&character, 1});
            received.acquire();
        }
    });
    const Outcome result = outcome(get(server.url()), [&] { received.release(); });
    EXPECT_EQ(result.body, "早上好");
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.response->headers.value("content-type"), "text/event-stream");
}

TEST_F(Response, BodiesAreDecoded) {
    const std::string text = "压缩的回答，压缩的回答，压缩的回答。";
    const std::vector<std::pair<std::string, std::string>> codings{
        {"gzip", "1f8b08000000000000037bdad7fd7ccfcae7b35a9ece9ef77ced94f77b7a9e121279dcd004001d3634ff36000000"},
        {"deflate", "789c7bdad7fd7ccfcae7b35a9ece9ef77ced94f77b7a9e121279dcd0040021e52613"},
        {"br", "1b3500f88d94a9b95e979f8fbfd793855cbf4f6392c4a60b427b6952558430929eae36b37d5dc140"},
    };
    for (const auto& [coding, hex] : codings) {
        const std::string header = "Content-Encoding: " + coding + "\r\n";
        LoopbackServer server(answering(httpResponse(fromHex(hex), "200 OK", header)));
        EXPECT_EQ(data(get(server.url())).body, text) << coding;
    }
    LoopbackServer server(answering(httpResponse("no gzip at all", "200 OK", "Content-Encoding: gzip\r\n")));
    EXPECT_EQ(outcome(get(server.url())).error, "响应的压缩数据无法解码。");

    const std::string one = "1f8b0800000000000203cbcf4b0500f1866c7a03000000";
    LoopbackServer twoMembers(answering(httpResponse(fromHex(one + one), "200 OK", "Content-Encoding: gzip\r\n")));
    EXPECT_EQ(outcome(get(twoMembers.url())).error, "响应的压缩数据无法解码。");
}

TEST_F(Response, ChunkedBodiesLoseTheirFramingAndTrailers) {
    LoopbackServer server(
        answering("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nTrailer: X-Sum\r\n\r\n"
                  "3\r\none\r\n4;x=y\r\n two\r\n0\r\nX-Sum: 1\r\n\r\n"));
    const Outcome result = outcome(get(server.url()));
    EXPECT_EQ(result.body, "one two");
    EXPECT_EQ(result.error, "");
}

TEST_F(Response, AnEndlessErrorBodyIsCut) {
    LoopbackServer server([](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 500 Internal Server Error\r\n\r\n");
        const std::string chunk(16384, 'x');
        while (connection.send(chunk)) {
        }
    });
    EXPECT_EQ(data(get(server.url())).body.size(), maximumErrorBodySize);
    server.waitForEnded(1);
}

TEST_F(Response, EndlessHeadersAreRefused) {
    LoopbackServer server([](Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\n");
        while (connection.send("X-More: and more\r\n")) {
        }
    });
    EXPECT_EQ(outcome(get(server.url())).error, "响应的标头过长。");
}

TEST_F(Response, WhatIsNotHTTPHasNoStatus) {
    for (const char* junk : {"SSH-2.0-OpenSSH_9.2\r\n", "<html>hello</html>", "HTTP/1.1 what\r\n\r\n"}) {
        LoopbackServer server(answering(junk));
        const Outcome result = outcome(get(server.url()));
        EXPECT_TRUE(result.response.has_value()) << junk << result.error;
        EXPECT_EQ(result.status(), std::nullopt) << junk;
        EXPECT_EQ(result.body, "") << junk;
    }
}

TEST_F(Redirects, TheSameServerGetsTheSameRequestAgain) {
    LoopbackServer server([](Connection& connection) {
        connection.readRequest();
        connection.send(httpResponse("moved", "307 Temporary Redirect", "Location: /there?a=b\r\n"));
        connection.readRequest();
        connection.send(httpResponse("ok"));
    });
    const Outcome result = outcome(withKey(post(server.url("/here"), "question")));
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(result.body, "ok");
    EXPECT_EQ(server.connectionCount(), 1);
    EXPECT_THAT(server.requests().at(1),
                AllOf(StartsWith("POST /there?a=b "), HasSubstr("secret-key"), EndsWith("\r\n\r\nquestion")));
}

TEST_F(Redirects, AnotherServerGetsNothing) {
    LoopbackServer other(answering(httpResponse("stolen")));
    const std::string port = std::to_string(other.port());
    for (const std::string& target : {other.url("/"), "//127.0.0.1:" + port, "http://localhost:" + port + "/x",
                                      "https://127.0.0.1:" + port, "http://user@127.0.0.1:" + port}) {
        LoopbackServer server(
            answering(httpResponse("moved", "308 Permanent Redirect", "Location: " + target + "\r\n")));
        const Outcome result = outcome(withKey(post(server.url(), "question")));
        EXPECT_EQ(result.status(), 308) << target;
        EXPECT_EQ(result.body, "moved") << target;
    }
    EXPECT_EQ(other.connectionCount(), 0);
}

TEST_F(Redirects, APostIsNeverTurnedIntoAGet) {
    LoopbackServer server(alwaysAnswering(httpResponse("moved", "302 Found", "Location: /there\r\n")));
    EXPECT_EQ(outcome(post(server.url(), "question")).status(), 302);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(Redirects, AreFollowedTenTimes) {
    LoopbackServer server(alwaysAnswering(httpResponse("moved", "302 Found", "Location: /again\r\n")));
    EXPECT_EQ(outcome(get(server.url())).error, "重定向次数过多。");
    EXPECT_EQ(server.requests().size(), 11U);
}

TEST_F(Redirects, AnEndlessBodyDoesNotHoldThemUp) {
    LoopbackServer server([](Connection& connection) {
        if (connection.readRequest().starts_with("GET /there ")) {
            connection.send(httpResponse("ok"));
            return;
        }
        connection.send("HTTP/1.1 302 Found\r\nLocation: /there\r\n\r\n");
        while (connection.send(std::string(16384, 'x'))) {
        }
    });
    EXPECT_EQ(outcome(get(server.url("/here"))).body, "ok");
}

}  // namespace
}  // namespace ovrin
