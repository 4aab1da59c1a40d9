// The way of a piece of a streamed reply from the server's socket to the main loop, beside that of the same bytes
// through `curl -N` into a pipe. Each server sends its clock's time as the piece; the reader takes the difference.
//
// Time per iteration is the latency of one piece; the counters give the median and the 99th percentile in
// microseconds. Pieces are far enough apart that every thread on the way has gone to sleep.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <semaphore>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "base/async_stream.h"
#include "base/environment.h"
#include "base/run_loop.h"
#include "fakes/loopback_server.h"
#include "platform/linux/network/url_session_http_client.h"

namespace ovrin {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto interval = std::chrono::milliseconds(1);

// What the reader of the lines tells the server.
struct Turn {
    std::binary_semaphore isNext{0};
    std::atomic<bool> isLast = false;
};

// Sends the time as a line, whenever the last one has been taken and the readers sleep.
LoopbackServer::Script sendingTheTime(Turn& turn) {
    return [&turn](LoopbackServer::Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n");
        while (true) {
            turn.isNext.acquire();
            if (turn.isLast) return;
            std::this_thread::sleep_for(interval);
            connection.send(std::to_string(Clock::now().time_since_epoch().count()) + "\n");
        }
    };
}

double microsecondsSince(const std::string& line) {
    const Clock::duration sent(std::stoll(line));
    return std::chrono::duration<double, std::micro>(Clock::now().time_since_epoch() - sent).count();
}

void report(benchmark::State& state, std::vector<double> latencies) {
    std::ranges::sort(latencies);
    if (latencies.empty()) return;
    state.counters["median_us"] = latencies[latencies.size() / 2];
    state.counters["p99_us"] = latencies[latencies.size() * 99 / 100];
}

// Takes one line for each iteration.
template <typename NextLine>
void measure(benchmark::State& state, Turn& turn, NextLine nextLine) {
    std::vector<double> latencies;
    for ([[maybe_unused]] const auto iteration : state) {
        turn.isNext.release();
        const double latency = microsecondsSince(nextLine());
        latencies.push_back(latency);
        state.SetIterationTime(latency / 1e6);
    }
    report(state, std::move(latencies));
    turn.isLast = true;
    turn.isNext.release();
}

// As replies travel: read on the network's loop, handed on piece by piece to the main loop.
AsyncStream<std::string> pieces(URLSessionHTTPClient& client, std::string url) {
    return streamFrom<std::string>(client.loop(),
                                   [&client, url = std::move(url)](StreamWriter<std::string>& writer) -> Task<void> {
                                       HTTPRequest request;
                                       request.url = url;
                                       HTTPBytes bytes = co_await client.bytes(std::move(request));
                                       while (true) {
                                           std::optional<std::string> chunk = co_await bytes.body.next();
                                           if (!chunk) co_return;
                                           writer.push(std::move(*chunk));
                                       }
                                   });
}

Task<std::string> next(AsyncStream<std::string>& stream) {
    std::optional<std::string> piece = co_await stream.next();
    co_return piece.value();
}

void pieceToMainLoop(benchmark::State& state) {
    Turn turn;
    LoopbackServer server(sendingTheTime(turn));
    URLSessionHTTPClient client{Environment()};
    RunLoop loop;
    AsyncStream<std::string> stream = pieces(client, server.url());
    measure(state, turn, [&] { return loop.complete(next(stream)); });
}

void curlToPipe(benchmark::State& state) {
    Turn turn;
    LoopbackServer server(sendingTheTime(turn));
    const std::string command = "exec curl --silent --no-buffer --noproxy '*' " + server.url();
    const std::unique_ptr<FILE, decltype(&pclose)> output(popen(command.c_str(), "re"), pclose);
    if (!output) throw std::runtime_error("curl does not start");
    measure(state, turn, [&] {
        std::array<char, 64> line{};
        if (!std::fgets(line.data(), line.size(), output.get())) throw std::runtime_error("curl has ended");
        return std::string(line.data());
    });
}

BENCHMARK(pieceToMainLoop)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(2'000);
BENCHMARK(curlToPipe)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(2'000);

}  // namespace
}  // namespace ovrin
