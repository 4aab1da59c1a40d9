// ovrin translate and ovrin ask as a user's shell sees them, against a server that follows a script.
#include <csignal>
#include <fstream>
#include <future>
#include <iterator>
#include <ostream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "fakes/loopback_server.h"
#include "program/running_program.h"

namespace ovrin {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string secret = "sk-secret-0123456789";

struct Protocol {
    std::string standard;
    std::string path;

    std::string piece(const std::string& text) const {
        const nlohmann::json content = text;
        if (standard == "anthropic") {
            const nlohmann::json event{
                {"type", "content_block_delta"}, {"index", 0}, {"delta", {{"type", "text_delta"}, {"text", text}}}};
            return "event: content_block_delta\ndata: " + event.dump() + "\n\n";
        }
        return R"(data: {"choices":[{"index":0,"delta":{"content":)" + content.dump() + "}}]}\n\n";
    }
    std::string end() const {
        return standard == "anthropic" ? "event: message_stop\ndata: {\"type\":\"message_stop\"}\n\n"
                                       : "data: [DONE]\n\n";
    }
};

void PrintTo(const Protocol& protocol, std::ostream* stream) {
    *stream << protocol.standard;
}

const Protocol openAI{.standard = "openai-compatible", .path = "/v1/chat/completions"};
const Protocol anthropic{.standard = "anthropic", .path = "/v1/messages"};

constexpr const char* streamHead = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nConnection: close\r\n\r\n";

// The variables that lead to the server. Without a key unless it is given.
std::vector<std::string> service(const std::string& url, const Protocol& protocol = openAI,
                                 const std::string& key = secret) {
    return {"OVRIN_BASE_URL=" + url, "OVRIN_API_STANDARD=" + protocol.standard, "OVRIN_API_KEY=" + key};
}

// Answers the first request of every connection with the same bytes.
LoopbackServer::Script answering(const std::string& bytes) {
    return [bytes](LoopbackServer::Connection& connection) {
        if (!connection.readRequest().empty()) connection.send(bytes);
    };
}

class EitherProtocol : public testing::TestWithParam<Protocol> {};

TEST_P(EitherProtocol, PrintsEachPieceBeforeTheNextIsSent) {
    std::promise<void> isRead;
    LoopbackServer server([&, protocol = GetParam()](LoopbackServer::Connection& connection) {
        connection.readRequest();
        connection.send(streamHead + protocol.piece("Good "));
        isRead.get_future().wait();
        connection.send(protocol.piece("morning\n") + protocol.end());
    });
    const TestHome home;
    RunningProgram program(home, {.arguments = {"translate", "--to", "en", "早上好"},
                                  .environment = service(server.url("/v1"), GetParam())});

    EXPECT_EQ(program.readOutput(5), "Good ");
    isRead.set_value();
    const auto outcome = program.finish();
    EXPECT_EQ(outcome.output, "morning\n");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(server.requests().at(0), HasSubstr("POST " + GetParam().path + " HTTP/1.1"));
}

TEST(Answer, TakesItsTextFromStandardInputAndTheTargetFromTheOption) {
    LoopbackServer server(answering(streamHead + openAI.piece("Bonjour") + openAI.end()));
    const TestHome home;
    const auto outcome = runProgram(
        home,
        {.arguments = {"translate", "--to", "fr"}, .environment = service(server.url("/v1")), .input = "早上好\n"});
    EXPECT_EQ(outcome.output, "Bonjour");
    EXPECT_THAT(server.requests().at(0), HasSubstr("French"));
    EXPECT_THAT(server.requests().at(0), HasSubstr("早上好"));
}

INSTANTIATE_TEST_SUITE_P(Both, EitherProtocol, testing::Values(openAI, anthropic),
                         [](const auto& test) { return test.param.standard == "anthropic" ? "Anthropic" : "OpenAI"; });

// The limit on core dumps does not count where the kernel pipes them to a program.
TEST(Answer, LeavesNothingOfItsMemoryInCoreDumps) {
    std::promise<void> isAsked;
    LoopbackServer server([&isAsked](LoopbackServer::Connection& connection) {
        if (!connection.readRequest().empty()) isAsked.set_value();
        connection.readRequest();
    });
    const TestHome home;
    RunningProgram program(home, {.arguments = {"ask", "?"}, .environment = service(server.url("/v1"))});
    isAsked.get_future().wait();
    std::string filter;
    std::ifstream("/proc/" + std::to_string(program.id()) + "/coredump_filter") >> filter;
    EXPECT_EQ(filter, "00000000");
}

TEST(Answer, ComesFromHostsNamedInAnyScript) {
    LoopbackServer proxy(answering(streamHead + openAI.piece("四十二") + openAI.end()));
    const TestHome home;
    auto environment = service("http://例子.测试/v1");
    environment.insert(environment.end(), {"http_proxy=" + proxy.url(""), "no_proxy=localhost"});
    const auto outcome = runProgram(home, {.arguments = {"ask", "?"}, .environment = environment});
    EXPECT_EQ(outcome.output, "四十二") << outcome.error;
    EXPECT_THAT(proxy.requests(), testing::ElementsAre(HasSubstr("POST http://xn--fsqu00a.xn--0zwm56d/v1/chat/")));
}

TEST(Answer, StoredTargetLanguageIsTheDefault) {
    LoopbackServer server(answering(streamHead + openAI.end()));
    const TestHome home;
    ASSERT_EQ(runProgram(home, {.arguments = {"config", "set", "ovrin.targetLanguage", "DE-de"}}).status, 0);
    EXPECT_EQ(
        runProgram(home, {.arguments = {"translate", "早上好"}, .environment = service(server.url("/v1"))}).status, 0);
    EXPECT_THAT(server.requests().at(0), HasSubstr("German"));
}

TEST(Answer, TheServicesFailureIsToldInItsWordsAfterWhatHadArrived) {
    const TestHome home;
    const auto failureOf = [&home](const Protocol& protocol, const std::string& response) {
        LoopbackServer server(answering(response));
        auto outcome = runProgram(
            home, {.arguments = {"translate", "早上好"}, .environment = service(server.url("/v1"), protocol)});
        EXPECT_EQ(outcome.status, 1);
        return outcome;
    };
    EXPECT_EQ(failureOf(openAI,
                        httpResponse(R"({"error":{"message":"Bad key","code":"invalid_api_key"}})", "401 Unauthorized"))
                  .error,
              "Bad key（invalid_api_key）\n");
    const auto broken = failureOf(
        anthropic, streamHead + anthropic.piece("Good") +
                       "event: error\ndata: {\"type\":\"error\",\"error\":{\"type\":\"x\",\"message\":\"Busy\"}}\n\n");
    EXPECT_EQ(broken.output, "Good");
    EXPECT_EQ(broken.error, "Busy\n");
}

TEST(Answer, ResetInTheMiddleKeepsWhatHadArrived) {
    std::promise<void> isRead;
    LoopbackServer server([&](LoopbackServer::Connection& connection) {
        connection.readRequest();
        connection.send(streamHead + openAI.piece("Good "));
        isRead.get_future().wait();
        connection.reset();
    });
    const TestHome home;
    RunningProgram program(home, {.arguments = {"ask", "hello"}, .environment = service(server.url("/v1"))});
    EXPECT_EQ(program.readOutput(5), "Good ");
    isRead.set_value();
    const auto outcome = program.finish();
    EXPECT_EQ(outcome.error, "连接被中断。\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(Answer, CertificateOfAnotherNameIsRefused) {
    const TestAuthority authority;
    LoopbackServer server({.identity = authority.issue("DNS:elsewhere.test")}, answering(streamHead + openAI.end()));
    const TestHome home;
    const std::string trusted = home.path() / "authority.pem";
    std::ofstream(trusted) << authority.certificate();
    auto environment = service(server.url("/v1"));
    environment.push_back("SSL_CERT_FILE=" + trusted);
    const auto outcome = runProgram(home, {.arguments = {"ask", "hello"}, .environment = environment});
    EXPECT_EQ(outcome.error, "网络连接失败：证书与主机名不符：服务器出示的证书不属于 127.0.0.1。\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(server.requests().empty());
}

TEST(Answer, SettingsThatCannotWorkAreRefusedBeforeAnyTraffic) {
    LoopbackServer server(answering(""));
    const auto failureOf = [](const TestHome& home, const std::vector<std::string>& environment) {
        const auto outcome = runProgram(home, {.arguments = {"translate", "早上好"}, .environment = environment});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        return outcome.error;
    };
    const TestHome home;
    EXPECT_EQ(failureOf(home, service("https://service.invalid/v1", openAI, "")),
              "尚未配置 API Key 或认证 Header，请先在设置中填写。\n");
    EXPECT_EQ(failureOf(home, service("ftp://127.0.0.1/v1")), "连接 URL 无效，请填写完整的 HTTP 或 HTTPS 地址。\n");
    ASSERT_EQ(runProgram(home, {.arguments = {"config", "set", "ovrin.model", " "}}).status, 0);
    EXPECT_EQ(failureOf(home, service(server.url("/v1"))), "尚未填写模型名称。\n");
    ASSERT_EQ(runProgram(home, {.arguments = {"config", "unset", "ovrin.model"}}).status, 0);
    EXPECT_EQ(runProgram(home, {.arguments = {"config", "set", "ovrin.maxOutputTokens", "0"}}).error,
              "最大输出 Token 必须大于 0。\n");

    std::filesystem::create_directories(home.keychainFile().parent_path());
    std::ofstream(home.keychainFile()) << R"({"com.quel.ovrin":{"model-custom-headers":"{\"X-Foo:\":\"bar\"}"}})";
    EXPECT_EQ(failureOf(home, service(server.url("/v1"))), "Header“X-Foo:”格式无效。\n");
    EXPECT_EQ(server.connectionCount(), 0);
}

// The server's script ends only when the client closes: a test that ends has seen it.
LoopbackServer::Script openEnded() {
    return [](LoopbackServer::Connection& connection) {
        connection.readRequest();
        connection.send(streamHead + openAI.piece("Good "));
        connection.waitForClose();
    };
}

TEST(Answer, ReaderThatGoesAwayEndsTheRequestEvenInSilence) {
    LoopbackServer server(openEnded());
    const TestHome home;
    RunningProgram program(home, {.arguments = {"ask", "hello"}, .environment = service(server.url("/v1"))});
    EXPECT_EQ(program.readOutput(5), "Good ");
    program.closeOutput();
    server.waitForEnded(1);
    const auto outcome = program.finish();
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.status, 1);
}

TEST(Answer, SignalsEndTheRequestWithTheShellsStatus) {
    for (const int number : {SIGINT, SIGTERM}) {
        LoopbackServer server(openEnded());
        const TestHome home;
        RunningProgram program(home, {.arguments = {"ask", "hello"}, .environment = service(server.url("/v1"))});
        EXPECT_EQ(program.readOutput(5), "Good ");
        program.signal(number);
        server.waitForEnded(1);
        const auto outcome = program.finish();
        EXPECT_EQ(outcome.status, 128 + number);
        EXPECT_EQ(outcome.error, "");
    }
}

TEST(Answer, KeyStaysInTheKeychainFileAndInTheRequest) {
    std::promise<void> isLookedAt;
    LoopbackServer server([&](LoopbackServer::Connection& connection) {
        connection.readRequest();
        connection.send(streamHead + openAI.piece("Good "));
        isLookedAt.get_future().wait();
        connection.reset();
    });
    const TestHome home;
    const auto stored = runProgram(home, {.arguments = {"config", "set-key"}, .input = secret + "\n"});
    ASSERT_EQ(stored.status, 0);
    ASSERT_EQ(runProgram(home, {.arguments = {"config", "set", "ovrin.connectionURL", server.url("/v1")}}).status, 0);

    RunningProgram program(home, {.arguments = {"ask", "hello"}});
    program.readOutput(5);
    std::string seen;
    for (const char* const name : {"cmdline", "environ"}) {
        std::ifstream file("/proc/" + std::to_string(program.id()) + "/" + name, std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        EXPECT_FALSE(bytes.empty());
        seen += bytes;
    }
    isLookedAt.set_value();
    const auto outcome = program.finish();
    const auto shown = runProgram(home, {.arguments = {"config", "get"}});
    seen += home.allBytes() + stored.output + stored.error + outcome.error + shown.output;

    EXPECT_THAT(server.requests().at(0), HasSubstr("Bearer " + secret));
    EXPECT_THAT(seen, Not(HasSubstr(secret)));
    const auto mode = std::filesystem::status(home.keychainFile()).permissions();
    EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

}  // namespace
}  // namespace ovrin
