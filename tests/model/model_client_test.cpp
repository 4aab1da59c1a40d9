#include "model/model_client.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/run_loop.h"
#include "base/virtual_loop.h"
#include "base/worker_executor.h"
#include "fakes/fake_http_client.h"
#include "model/deep_seek_error.h"
#include "model/recorded_answers.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;
using Json = nlohmann::json;
using Strings = std::vector<std::string>;
using Messages = std::vector<DeepSeek::Message>;

const Messages conversation = {{"system", "A"},        {"user", "hello"}, {"system", "B"}, {"assistant", "hi"},
                               {"assistant", "there"}, {"tool", "x"},     {"user", "bye"}};

std::string openAIPiece(const std::string& text) {
    return "data: " + Json{{"choices", {{{"delta", {{"content", text}}}}}}}.dump() + "\n\n";
}

std::string anthropicPiece(const std::string& text) {
    return "data: " +
           Json{{"type", "content_block_delta"}, {"delta", {{"type", "text_delta"}, {"text", text}}}}.dump() + "\n\n";
}

// What a consumer saw of an answer.
struct Seen {
    Strings pieces;
    bool hasThought = false;
    bool hasEnded = false;
    std::exception_ptr failure;

    std::string errorText() const { return failure ? errorDescription(failure) : ""; }
    std::optional<DeepSeekError> error() const {
        try {
            if (failure) std::rethrow_exception(failure);
        } catch (const DeepSeekError& error) {
            return error;
        } catch (...) {
        }
        return std::nullopt;
    }
};

Task<void> consume(AsyncStream<AnswerChange> stream, Seen& seen) {
    try {
        while (true) {
            std::optional<AnswerChange> change = co_await stream.next();
            if (!change) break;
            if (change->kind == AnswerChange::Kind::thinking) {
                seen.hasThought = true;
            } else {
                seen.pieces.push_back(std::move(change->text));
            }
        }
    } catch (...) {
        seen.failure = std::current_exception();
    }
    seen.hasEnded = true;
}

Task<void> consumeWhole(Task<std::string> answer, Seen& seen) {
    try {
        std::string text = co_await std::move(answer);
        seen.pieces.push_back(std::move(text));
    } catch (...) {
        seen.failure = std::current_exception();
    }
    seen.hasEnded = true;
}

class ModelClientTest : public ::testing::Test {
protected:
    ModelClientTest() { useOpenAI(); }

    void useOpenAI() {
        configuration = {.standard = ModelAPIStandard::openAICompatible,
                         .connectionURL = " https://api.example.com/v1 ",
                         .apiKey = " key\n",
                         .model = " model ",
                         .customHeaders = {{"X-Extra", " 1 "}},
                         .maxOutputTokens = 77};
    }
    void useAnthropic() {
        useOpenAI();
        configuration.standard = ModelAPIStandard::anthropic;
    }

    // Runs a streamed call to its end, or to where it waits.
    const Seen& stream(const Messages& messages = conversation) {
        seen = {};
        task.replace(consume(client.stream(messages, 0.2), seen));
        loop.runPosted();
        return seen;
    }
    const Seen& complete() {
        seen = {};
        task.replace(consumeWhole(client.complete(conversation, 0.0), seen));
        loop.runPosted();
        return seen;
    }

    const HTTPRequest& request() const { return http.requests().at(0); }
    Json body() const { return Json::parse(request().body); }

    VirtualLoop loop;
    FakeHTTPClient http;
    ModelAPIConfiguration configuration;
    int configurationsRead = 0;
    ModelClient client{loop, http, [this] {
                           ++configurationsRead;
                           return finished(configuration);
                       }};
    Seen seen;
    TaskSlot task{loop};
};

TEST_F(ModelClientTest, AsksAnOpenAICompatibleService) {
    http.willAnswer({.chunks = {openAIPiece("a") + openAIPiece(""), openAIPiece("b"), "data: [DONE]\n\n"}});
    EXPECT_EQ(stream().pieces, (Strings{"a", "b"}));
    EXPECT_TRUE(seen.hasEnded);
    EXPECT_EQ(seen.failure, nullptr);
    EXPECT_EQ(request().url, "https://api.example.com/v1/chat/completions");
    EXPECT_EQ(request().method, "POST");
    EXPECT_EQ(request().timeout, 90s);
    EXPECT_EQ(request().headers.value("authorization"), "Bearer key");
    EXPECT_EQ(request().headers.value("content-type"), "application/json");
    EXPECT_EQ(request().headers.value("accept"), "text/event-stream");
    EXPECT_EQ(request().headers.value("x-extra"), "1");
    EXPECT_EQ(body()["model"], " model ");
    EXPECT_EQ(body()["messages"].size(), conversation.size());
    EXPECT_EQ(body()["messages"][5], (Json{{"role", "tool"}, {"content", "x"}}));
    EXPECT_EQ(body()["temperature"], 0.2);
    EXPECT_EQ(body()["stream"], true);
    EXPECT_FALSE(body().contains("max_tokens"));
}

TEST_F(ModelClientTest, AsksAnAnthropicService) {
    useAnthropic();
    http.willAnswer({.chunks = {anthropicPiece("a"), anthropicPiece("b") + "data: {\"type\":\"message_stop\"}\n",
                                anthropicPiece("late")}});
    EXPECT_EQ(stream().pieces, (Strings{"a", "b"}));
    EXPECT_EQ(request().url, "https://api.example.com/v1/messages");
    EXPECT_EQ(request().headers.value("x-api-key"), "key");
    EXPECT_EQ(request().headers.value("anthropic-version"), "2023-06-01");
    EXPECT_EQ(request().headers.value("authorization"), "");
    EXPECT_EQ(body()["system"], "A\n\nB");
    EXPECT_EQ(body()["max_tokens"], 77);
    EXPECT_EQ(body()["messages"], Json::parse(R"([{"role":"user","content":"hello"},{"role":"assistant","content":"hi"},
        {"role":"assistant","content":"there"},{"role":"user","content":"bye"}])"));
}

TEST_F(ModelClientTest, SendsAnEmptyConversationWithoutTurnsToAnthropic) {
    useAnthropic();
    http.willAnswer({});
    stream({{"system", ""}});
    EXPECT_EQ(body()["messages"], Json::array());
    EXPECT_FALSE(body().contains("system"));
}

TEST_F(ModelClientTest, LetsCustomHeadersWin) {
    configuration.customHeaders = {{"authorization", "Custom"}, {"ACCEPT", "text/plain"}};
    http.willAnswer({});
    stream();
    EXPECT_EQ(request().headers.value("Authorization"), "Custom");
    EXPECT_EQ(request().headers.value("Accept"), "text/plain");
    EXPECT_EQ(std::distance(request().headers.begin(), request().headers.end()), 3);
}

TEST_F(ModelClientTest, DeliversAPieceBeforeTheNextArrives) {
    http.willAnswer({.chunks = {openAIPiece("a") + "data: {\"choices\":[{\"delta\":{\"content\":\"\xE4"},
                     .ending = FakeHTTPClient::Ending::staysOpen});
    EXPECT_EQ(stream().pieces, Strings{"a"});
    EXPECT_FALSE(seen.hasEnded);
    http.openBody().push("\xBD\xA0\"}}]}\r");
    loop.runPosted();
    EXPECT_EQ(seen.pieces, (Strings{"a", "你"}));
    http.openBody().finish();
    loop.runPosted();
    EXPECT_TRUE(seen.hasEnded);
    EXPECT_EQ(seen.failure, nullptr);
}

TEST_F(ModelClientTest, ReadsNothingAfterTheEndMark) {
    http.willAnswer({.chunks = {openAIPiece("a") + "data: [DONE]\n" + openAIPiece("late")},
                     .ending = FakeHTTPClient::Ending::staysOpen});
    EXPECT_EQ(stream().pieces, Strings{"a"});
    EXPECT_TRUE(seen.hasEnded);
    EXPECT_TRUE(http.isBodyDropped());
}

TEST_F(ModelClientTest, KeepsThePiecesBeforeAFailure) {
    http.willAnswer({.chunks = {openAIPiece("a")}, .ending = FakeHTTPClient::Ending::fails, .failure = "连接被重置。"});
    EXPECT_EQ(stream().pieces, Strings{"a"});
    EXPECT_EQ(seen.errorText(), "连接被重置。");

    useAnthropic();
    http.willAnswer({.chunks = {anthropicPiece("a"),
                                "event: error\ndata: {\"type\":\"error\",\"error\":{\"type\":\"overloaded_error\","
                                "\"message\":\"Overloaded\"}}\n\n" +
                                    anthropicPiece("late")}});
    EXPECT_EQ(stream().pieces, Strings{"a"});
    EXPECT_EQ(seen.error(), DeepSeekError::apiError("Overloaded", "overloaded_error"));
}

TEST_F(ModelClientTest, TurnsTransportFailuresIntoItsOwn) {
    http.willFail("找不到服务器。");
    EXPECT_EQ(stream().errorText(), "网络连接失败：找不到服务器。");
    http.willFail("找不到服务器。");
    EXPECT_EQ(complete().error(), DeepSeekError::transport("找不到服务器。"));
    http.willAnswer({.statusCode = std::nullopt});
    EXPECT_EQ(stream().error(), DeepSeekError::invalidResponse());
    http.willAnswer({.statusCode = std::nullopt});
    EXPECT_EQ(complete().error(), DeepSeekError::invalidResponse());
}

TEST_F(ModelClientTest, MapsHTTPErrors) {
    struct Row {
        ModelAPIStandard standard;
        int status;
        std::string body;
        DeepSeekError error;
    };
    const std::string coded = R"({"error":{"message":"Bad key","type":"auth","code":"invalid_api_key"}})";
    const std::string numbered = R"({"error":{"message":"Bad key","code":401}})";
    const std::string overloaded = R"({"type":"error","error":{"type":"overloaded_error","message":"Overloaded"}})";
    const std::vector<Row> rows = {
        {ModelAPIStandard::openAICompatible, 401, coded, DeepSeekError::apiError("Bad key", "auth", "invalid_api_key")},
        {ModelAPIStandard::openAICompatible, 401, numbered, DeepSeekError::httpStatus(401, numbered)},
        {ModelAPIStandard::openAICompatible, 502, " <html>\n", DeepSeekError::httpStatus(502, " <html>\n")},
        {ModelAPIStandard::openAICompatible, 302, "", DeepSeekError::httpStatus(302, "")},
        {ModelAPIStandard::openAICompatible, 500, "\xFF", DeepSeekError::httpStatus(500)},
        {ModelAPIStandard::anthropic, 529, overloaded, DeepSeekError::apiError("Overloaded", "overloaded_error")},
        {ModelAPIStandard::anthropic, 401, numbered, DeepSeekError::apiError("Bad key")},
        {ModelAPIStandard::anthropic, 404, "null", DeepSeekError::httpStatus(404, "null")},
    };
    for (const Row& row : rows) {
        configuration.standard = row.standard;
        const std::size_t half = row.body.size() / 2;
        http.willAnswer({.statusCode = row.status, .chunks = {row.body.substr(0, half), row.body.substr(half)}});
        EXPECT_EQ(stream().error(), row.error);
        http.willAnswer({.statusCode = row.status, .chunks = {row.body}});
        EXPECT_EQ(complete().error(), row.error);
    }
}

TEST_F(ModelClientTest, LeavesOutATemperatureThatIsRefusedAndRemembersIt) {
    const auto sent = [this](std::size_t request) {
        return Json::parse(http.requests().at(request).body).contains("temperature");
    };
    http.willAnswer({.statusCode = 400, .chunks = {std::string(recorded::refusedTemperature)}});
    http.willAnswer({.chunks = {openAIPiece("a")}});
    EXPECT_EQ(stream().pieces, Strings{"a"});
    EXPECT_EQ(seen.failure, nullptr);
    Json first = Json::parse(http.requests().at(0).body);
    first.erase("temperature");
    EXPECT_EQ(first, Json::parse(http.requests().at(1).body)) << "nothing else is left out";
    http.willAnswer({.chunks = {openAIPiece("b")}});
    EXPECT_EQ(stream().pieces, Strings{"b"});
    EXPECT_FALSE(sent(2));
    configuration.model = "another";
    http.willAnswer({.chunks = {openAIPiece("c")}});
    EXPECT_EQ(stream().pieces, Strings{"c"});
    EXPECT_TRUE(sent(3));

    useAnthropic();
    http.willAnswer({.statusCode = 400, .chunks = {std::string(recorded::deprecatedTemperature)}});
    http.willAnswer({.chunks = {R"({"content":[{"type":"text","text":"d"}]})"}});
    EXPECT_EQ(complete().pieces, Strings{"d"});
    EXPECT_FALSE(sent(5));

    useOpenAI();
    configuration.connectionURL = "https://elsewhere/v1";
    for (const auto& [status, body] : {std::pair{400, std::string(recorded::contextExceeded)},
                                       std::pair{422, std::string(recorded::refusedTemperature)}}) {
        http.willAnswer({.statusCode = status, .chunks = {body}});
        EXPECT_NE(stream().failure, nullptr);
    }
    EXPECT_EQ(http.requests().size(), 8U) << "no other error is tried again";
}

TEST_F(ModelClientTest, PlaysTheAnswersOfLocalServers) {
    for (const std::string_view body : {recorded::llamaCppStream, recorded::ollamaStream, recorded::lmStudioStream,
                                        recorded::vllmStream, recorded::thinkingTagsStream}) {
        http.willAnswer({.chunks = {std::string(body)}});
        std::string answer;
        for (const std::string& piece : stream().pieces) answer += piece;
        EXPECT_EQ(answer, "Paris.") << body;
        EXPECT_EQ(seen.failure, nullptr);
        EXPECT_EQ(seen.hasThought, body.find("Okay") != std::string_view::npos) << body;
    }
    http.willAnswer({.chunks = {std::string(recorded::llamaCppAnswer)}});
    EXPECT_EQ(complete().pieces, Strings{"Paris."});
    http.willAnswer({.chunks = {std::string(recorded::onlyThoughts)}});
    EXPECT_EQ(complete().error(), DeepSeekError::emptyResponse());

    useAnthropic();
    http.willAnswer(
        {.chunks = {R"(data: {"type":"content_block_delta","delta":{"type":"thinking_delta","thinking":"a"}})"
                    "\n",
                    anthropicPiece("Paris.")}});
    EXPECT_EQ(stream().pieces, Strings{"Paris."});
    EXPECT_TRUE(seen.hasThought);

    useOpenAI();
    const std::string loading = R"({"error":{"message":"Loading model","type":"unavailable_error","code":503}})";
    const std::string vllm =
        R"({"error":{"message":"The model `m` does not exist.","type":"NotFoundError","param":"model","code":404}})";
    const std::string ollama =
        R"({"error":{"message":"model 'm' not found","type":"not_found_error","param":null,"code":null}})";
    http.willAnswer({.statusCode = 503, .chunks = {loading}});
    EXPECT_EQ(stream().error(), DeepSeekError::httpStatus(503, loading)) << "codes are numbers, see above";
    http.willAnswer({.statusCode = 404, .chunks = {vllm}});
    EXPECT_EQ(stream().error(), DeepSeekError::httpStatus(404, vllm));
    http.willAnswer({.statusCode = 404, .chunks = {ollama}});
    EXPECT_EQ(stream().errorText(), "model 'm' not found");
}

TEST_F(ModelClientTest, GivesWhatWasKeptForATagBeforeAFailure) {
    http.willAnswer(
        {.chunks = {openAIPiece("<thi")}, .ending = FakeHTTPClient::Ending::fails, .failure = "连接被重置。"});
    EXPECT_EQ(stream().pieces, Strings{"<thi"});
    EXPECT_EQ(seen.errorText(), "连接被重置。");
}

TEST_F(ModelClientTest, BoundsAnErrorBodyThatNeverEnds) {
    std::string chunk = "x";
    while (chunk.size() < 100'000) chunk += "你";
    http.willAnswer({.statusCode = 500, .chunks = Strings(20, chunk), .ending = FakeHTTPClient::Ending::staysOpen});
    const auto error = stream().error();
    ASSERT_TRUE(error && error->payload().body);
    EXPECT_LE(error->payload().body->size(), maximumErrorBodySize);
    EXPECT_GT(error->payload().body->size(), maximumErrorBodySize - 3);
    EXPECT_TRUE(http.isBodyDropped());

    // Collected, it comes cut by the client: in the middle of a character.
    std::string body;
    while (body.size() < maximumErrorBodySize) body += chunk;
    http.willAnswer({.statusCode = 500, .chunks = {body.substr(0, maximumErrorBodySize)}});
    EXPECT_EQ(complete().error(), error);
}

TEST_F(ModelClientTest, GivesAWholeAnswer) {
    http.willAnswer({.chunks = {R"({"choices":[{"message":{"role":"assistant","content":" a\n"}},
                                               {"message":{"role":"assistant","content":"b"}}]})"}});
    EXPECT_EQ(complete().pieces, Strings{" a\n"});
    EXPECT_EQ(request().headers.value("Accept"), "application/json");
    EXPECT_EQ(body()["stream"], false);
    EXPECT_EQ(body()["temperature"], 0.0);

    useAnthropic();
    http.willAnswer({.chunks = {R"({"content":[{"type":"text","text":"a"},{"type":"thinking","text":"hm"},
                                               {"type":"text"},{"type":"text","text":" b"}]})"}});
    EXPECT_EQ(complete().pieces, Strings{"a b"});
}

TEST_F(ModelClientTest, TellsEmptyAnswersFromThoseItCannotRead) {
    for (const char* answer : {R"({"choices":[]})", R"({"choices":[{"message":{"role":"assistant","content":""}}]})"}) {
        http.willAnswer({.chunks = {answer}});
        EXPECT_EQ(complete().errorText(), "服务没有返回内容，请稍后重试。");
    }
    http.willAnswer({.chunks = {"<html>"}});
    EXPECT_EQ(complete().errorText(), "响应解析失败：内容不是有效的 JSON。");
    http.willAnswer({.chunks = {"{}"}});
    EXPECT_EQ(complete().errorText(), "响应解析失败：缺少有效的 choices 字段。");

    useAnthropic();
    http.willAnswer({.chunks = {R"({"content":[{"type":"tool_use"}]})"}});
    EXPECT_EQ(complete().error(), DeepSeekError::emptyResponse());
    http.willAnswer({.chunks = {"{}"}});
    EXPECT_EQ(complete().errorText(), "响应解析失败：缺少有效的 content 字段。");
}

TEST_F(ModelClientTest, CancelsTheRequestWhileItConnects) {
    http.willHang();
    stream();
    EXPECT_EQ(http.requests().size(), 1U);
    task.cancel();
    loop.runPosted();
    EXPECT_EQ(http.abandonedRequests(), 1);
    EXPECT_FALSE(seen.hasEnded);

    http.willHang();
    complete();
    task.cancel();
    loop.runPosted();
    EXPECT_EQ(http.abandonedRequests(), 2);
}

TEST_F(ModelClientTest, CancelsTheBodyWhileItStreams) {
    http.willAnswer({.chunks = {openAIPiece("a")}, .ending = FakeHTTPClient::Ending::staysOpen});
    stream();
    task.cancel();
    http.openBody().push(openAIPiece("late"));
    loop.runPosted();
    EXPECT_TRUE(http.isBodyDropped());
    EXPECT_EQ(seen.pieces, Strings{"a"});
    EXPECT_FALSE(seen.hasEnded);

    http.willAnswer({.statusCode = 500, .chunks = {"x"}, .ending = FakeHTTPClient::Ending::staysOpen});
    stream();
    task.cancel();
    loop.runPosted();
    EXPECT_TRUE(http.isBodyDropped());
}

// The I/O loop on a thread of its own, as in the program.
struct ModelClientThreads : ::testing::Test {
    ModelClientThreads() {
        while (!started.stop_requested()) std::this_thread::yield();
    }
    ~ModelClientThreads() override {
        ioLoop->post([this] { ioLoop->quit(); });
    }

    ModelClient client(std::function<void()> beforeReading) {
        return {*ioLoop, http, ModelClient::readingOn(worker, [beforeReading = std::move(beforeReading)] {
                    beforeReading();
                    return ModelAPIConfiguration{.connectionURL = "http://h",
                                                 .apiKey = "k",
                                                 .model = "m",
                                                 .customHeaders = {},
                                                 .maxOutputTokens = 1};
                })};
    }

    std::unique_ptr<RunLoop> ioLoop;
    std::stop_source started;
    FakeHTTPClient http;
    std::binary_semaphore isAsked{0};  // the keyring
    std::binary_semaphore isUnlocked{0};
    std::atomic<bool> hasGivenUp = false;
    WorkerExecutor worker{1};  // after what its work uses
    RunLoop mainLoop;
    Seen seen;
    std::jthread thread{[this] {
        ioLoop = std::make_unique<RunLoop>();
        started.request_stop();
        ioLoop->run();
    }};
};

TEST_F(ModelClientThreads, GoOnStreamingWhileTheKeyringOfAnotherCallIsLocked) {
    http.willAnswer({.chunks = {openAIPiece("a")}, .ending = FakeHTTPClient::Ending::staysOpen});
    AsyncStream<AnswerChange> open = client([] {}).stream(conversation, 0.2);
    mainLoop.complete([](AsyncStream<AnswerChange>& stream) -> Task<void> { co_await stream.next(); }(open));

    const AsyncStream<AnswerChange> waiting = client([this] {
                                                  isAsked.release();
                                                  hasGivenUp = !isUnlocked.try_acquire_for(10s);
                                              }).stream(conversation, 0.2);
    isAsked.acquire();
    ioLoop->post([this] {
        http.openBody().push(openAIPiece("b"));
        http.openBody().finish();
    });
    mainLoop.complete(consume(std::move(open), seen));
    EXPECT_FALSE(hasGivenUp);
    EXPECT_EQ(seen.pieces, Strings{"b"});
    isUnlocked.release();
}

}  // namespace
}  // namespace ovrin
