#include <chrono>
#include <future>
#include <memory>
#include <semaphore>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/async_stream.h"
#include "base/running_task.h"
#include "platform/url_session_http_client_fixture.h"

using namespace std::chrono_literals;
using testing::StartsWith;

namespace ovrin {
namespace {

using Connections = URLSessionHTTPClientTest;
using Cancelling = URLSessionHTTPClientTest;

TEST_F(Connections, AreUsedAgain) {
    LoopbackServer server(alwaysAnswering(httpResponse("ok")));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(data(post(server.url(), "question")).body, "ok");
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(Connections, AreUsedAgainWhenAnAnswerWasDroppedJustBeforeItsEnd) {
    std::binary_semaphore dropped(0);
    LoopbackServer server([&](Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n6\r\n[DONE]\r\n");
            dropped.acquire();
            connection.send("0\r\n\r\n");
        }
    });
    constexpr int count = 20;
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(loop.complete(firstChunk(client, get(server.url()))), "[DONE]");
        dropped.release();
    }
    EXPECT_LT(server.connectionCount(), count);  // the end may come too late now and then
}

TEST_F(Connections, OneThatTheServerClosedMeanwhileIsReplaced) {
    LoopbackServer server(answering(httpResponse("ok")));
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(data(post(server.url(), "question")).body, "ok");
        server.waitForEnded(i);
    }
    EXPECT_EQ(server.connectionCount(), 3);
}

TEST_F(Connections, ReachIPv6Addresses) {
    std::optional<LoopbackServer> server;
    try {
        server.emplace(LoopbackServer::Options{.address = LoopbackServer::Address::ipv6},
                       answering(httpResponse("six")));
    } catch (const std::runtime_error&) {
        GTEST_SKIP() << "this machine has no IPv6";
    }
    EXPECT_EQ(data(get(server->url())).body, "six");
}

TEST_F(Cancelling, ClosesAConnectionThatNeverAnswers) {
    std::promise<void> requested;
    LoopbackServer server([&](Connection& connection) {
        connection.readRequest();
        requested.set_value();
        connection.waitForClose();
    });
    TaskGroup tasks(loop);
    tasks.start([](HTTPClientProtocol& http, HTTPRequest request) -> Task<void> {
        const HTTPData data = co_await http.data(std::move(request));
        ADD_FAILURE() << data.body;
    }(client, get(server.url())));
    requested.get_future().wait();
    tasks.cancelAll();
    server.waitForEnded(1);
}

TEST_F(Cancelling, AThousandStreamsLeaveNothing) {
    const long descriptors = descriptorCount();
    {
        LoopbackServer server([](Connection& connection) {
            const std::string request = connection.readRequest();
            const std::string path = request.substr(0, request.find(" HTTP"));
            connection.send(streamHead);
            for (int i = 0; i < 20; ++i) connection.send(path + "\n");
            connection.waitForClose();
        });
        URLSessionHTTPClient shortLived{Environment()};
        // The way that replies take: read on the network's loop, handed on to this one.
        const auto pieces = [&](const std::string& url) {
            return streamFrom<std::string>(shortLived.loop(),
                                           [&http = shortLived, url](StreamWriter<std::string>& writer) -> Task<void> {
                                               HTTPBytes bytes = co_await http.bytes(get(url));
                                               while (true) {
                                                   std::optional<std::string> chunk = co_await bytes.body.next();
                                                   if (!chunk) co_return;
                                                   writer.push(std::move(*chunk));
                                               }
                                           });
        };
        const auto first = [](AsyncStream<std::string> stream) -> Task<std::string> {
            std::optional<std::string> piece = co_await stream.next();
            co_return piece.value_or("");
        };
        constexpr int count = 1'000;
        for (int i = 0; i < count; ++i) {
            const std::string path = "/" + std::to_string(i);
            const std::string piece = loop.complete(first(pieces(server.url(path))));
            ASSERT_THAT(piece, StartsWith("GET " + path + "\n"));
        }
        server.waitForEnded(count);
        EXPECT_EQ(server.connectionCount(), count);
    }
    EXPECT_EQ(descriptorCount(), descriptors);
}

TEST_F(Cancelling, TheEndOfTheClientEndsItsStreamsAndTheirTasks) {
    LoopbackServer server([](Connection& connection) {
        connection.readRequest();
        connection.send(streamHead);
        connection.send("piece");
        connection.waitForClose();
    });
    auto ending = std::make_unique<URLSessionHTTPClient>(Environment());
    const auto marker = std::make_shared<int>(0);
    AsyncStream<std::string> stream = streamFrom<std::string>(
        ending->loop(), [marker, &http = *ending, url = server.url()](StreamWriter<std::string>& writer) -> Task<void> {
            writer.push(co_await firstChunk(http, get(url)));
            writer.push(co_await firstChunk(http, get(url + "never")));
            co_await http.data(get(url));
        });
    const auto next = [](AsyncStream<std::string>& source) -> Task<std::optional<std::string>> {
        std::optional<std::string> piece = co_await source.next();
        co_return piece;
    };
    EXPECT_EQ(loop.complete(next(stream)), "piece");
    EXPECT_EQ(loop.complete(next(stream)), "piece");
    ending.reset();
    EXPECT_THROW(loop.complete(next(stream)), CancellationError);
    EXPECT_EQ(marker.use_count(), 1);
    server.waitForEnded(3);
}

}  // namespace
}  // namespace ovrin
