#include "settings/local_service_finder.h"

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/virtual_loop.h"
#include "fakes/fake_http_client.h"
#include "model/recorded_answers.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

class LocalServiceFinderTest : public ::testing::Test {
protected:
    void willList(std::string_view body) { http.willAnswer({.chunks = {std::string(body)}}); }

    VirtualLoop loop;
    FakeHTTPClient http;
    LocalServiceFinder finder{loop, loop, http, LocalServiceFinder::ports({})};
};

TEST_F(LocalServiceFinderTest, NamesWhatAnswersAndAsksWithoutAnyHeader) {
    willList(recorded::ollamaModels);
    willList(recorded::lmStudioModels);
    willList(recorded::llamaCppModels);
    willList(recorded::vllmModels);
    finder.look();
    loop.advance(0ms);
    std::vector<std::string> names;
    for (const LocalService& service : finder.found().value().value()) names.push_back(service.name);
    EXPECT_EQ(names, (std::vector<std::string>{"Ollama", "LM Studio", "llama.cpp", "vLLM"}));
    EXPECT_EQ(finder.found().value()->at(2).connectionURL, "http://127.0.0.1:8080/v1");
    EXPECT_EQ(finder.found().value()->at(2).models, std::vector<std::string>{"SmolLM2-135M-Instruct"});
    for (const HTTPRequest& request : http.requests()) {
        EXPECT_TRUE(request.url.starts_with("http://127.0.0.1:")) << request.url;
        EXPECT_EQ(request.headers.begin(), request.headers.end());
        EXPECT_EQ(request.redirects, HTTPRedirects::none);
        EXPECT_EQ(request.proxies, HTTPProxies::none);
    }
}

TEST_F(LocalServiceFinderTest, WaitsForNothingThatDoesNotAnswerAsAServiceDoes) {
    willList(recorded::ollamaWithoutModels);
    http.willHang();
    willList("<!doctype html>");
    http.willAnswer({.chunks = std::vector<std::string>(9, std::string(1 << 20, ' '))});
    finder.look();
    loop.advance(299ms);
    EXPECT_FALSE(finder.found().value());
    loop.advance(1ms);
    EXPECT_EQ(finder.found().value(), std::vector<LocalService>(1, {"Ollama", "http://127.0.0.1:11434/v1", {}}));
    EXPECT_EQ(http.abandonedRequests(), 1);

    for (int port = 0; port < 4; ++port) http.willHang();
    finder.look();
    loop.runPosted();
    finder.stop();
    loop.advance(1s);
    EXPECT_EQ(http.abandonedRequests(), 5);
    EXPECT_EQ(finder.found().value()->size(), 1U) << "what was found stays";
}

TEST_F(LocalServiceFinderTest, TellsServicesOfOneNameApart) {
    willList(recorded::llamaCppModels);
    willList(recorded::vllmModels);
    willList(recorded::llamaCppModels);
    http.willHang();
    finder.look();
    loop.advance(300ms);
    std::vector<std::string> names;
    for (const LocalService& service : finder.found().value().value()) names.push_back(service.name);
    EXPECT_EQ(names, (std::vector<std::string>{"llama.cpp（11434）", "vLLM", "llama.cpp（8080）"}));
}

TEST_F(LocalServiceFinderTest, LooksWhereTheUserSaysInstead) {
    const auto ports = [](const std::string& named) {
        return LocalServiceFinder::ports(Environment({{"OVRIN_LOCAL_PORTS", named}}));
    };
    EXPECT_EQ(ports("5000, 8081"), (LocalServiceFinder::Ports{5000, 8081}));
    EXPECT_EQ(ports("none"), LocalServiceFinder::Ports());
    EXPECT_EQ(ports("70000,0,80x,81"), LocalServiceFinder::Ports{81});
}

}  // namespace
}  // namespace ovrin
