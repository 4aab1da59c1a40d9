#include "model/model_api_configuration.h"

#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "model/deep_seek_error.h"

namespace ovrin {
namespace {

using Headers = std::map<std::string, std::string>;

ModelAPIConfiguration configuration(ModelAPIStandard standard = ModelAPIStandard::openAICompatible) {
    return {.standard = standard,
            .connectionURL = "https://api.example.com/v1",
            .apiKey = "key",
            .model = "some-model",
            .customHeaders = {},
            .maxOutputTokens = 4096};
}

// The endpoint of a connection URL; none when it is refused.
std::optional<std::string> endpoint(std::string connectionURL,
                                    ModelAPIStandard standard = ModelAPIStandard::openAICompatible) {
    ModelAPIConfiguration value = configuration(standard);
    value.connectionURL = std::move(connectionURL);
    try {
        return value.endpointURL();
    } catch (const DeepSeekError& error) {
        EXPECT_EQ(error, DeepSeekError::invalidConnectionURL());
        return std::nullopt;
    }
}

std::optional<DeepSeekError> failure(const ModelAPIConfiguration& value) {
    try {
        EXPECT_EQ(value.validated(), value);
        return std::nullopt;
    } catch (const DeepSeekError& error) {
        return error;
    }
}

TEST(ModelAPIStandard, HasRawValuesThatMatchExactly) {
    for (const ModelAPIStandard standard : allModelAPIStandards) {
        EXPECT_EQ(modelAPIStandard(rawValue(standard)), standard);
    }
    EXPECT_EQ(allModelAPIStandards.front(), ModelAPIStandard::openAICompatible);
    EXPECT_EQ(modelAPIStandard("Anthropic"), std::nullopt);
    EXPECT_EQ(modelAPIStandard("openai"), std::nullopt);
}

TEST(ModelAPIConfiguration, AppendsThePathOfItsStandard) {
    EXPECT_EQ(endpoint("https://h.example/v1"), "https://h.example/v1/chat/completions");
    EXPECT_EQ(endpoint("https://h.example/v1///"), "https://h.example/v1/chat/completions");
    EXPECT_EQ(endpoint("https://h.example"), "https://h.example/chat/completions");
    EXPECT_EQ(endpoint("https://h.example/", ModelAPIStandard::anthropic), "https://h.example/messages");
    EXPECT_EQ(endpoint("https://h.example/v1/messages"), "https://h.example/v1/messages/chat/completions");
    EXPECT_EQ(endpoint("https://h.example/achat/completions"), "https://h.example/achat/completions/chat/completions");
}

TEST(ModelAPIConfiguration, LeavesAnEndpointAsItIs) {
    for (const char* url : {"https://h.example/v1/chat/completions", "https://h.example/v1/Chat/Completions/",
                            "https://h.example/chat/completions?version=2", "HTTPS://h.example/chat/completions"}) {
        EXPECT_EQ(endpoint(url), url);
    }
    EXPECT_EQ(endpoint("https://h.example/v1/messages", ModelAPIStandard::anthropic), "https://h.example/v1/messages");
}

TEST(ModelAPIConfiguration, KeepsTheOtherPartsOfTheURL) {
    EXPECT_EQ(endpoint(" \n\thttp://h.example:8080/v1?a=b#c\u3000"), "http://h.example:8080/v1/chat/completions?a=b#c");
    EXPECT_EQ(endpoint("https://user:p%20w@[::1]:8443/v1"), "https://user:p%20w@[::1]:8443/v1/chat/completions");
    EXPECT_EQ(endpoint("https://例子.测试/路"), "https://例子.测试/%e8%b7%af/chat/completions");
    EXPECT_EQ(endpoint("https://h.example/a b"), "https://h.example/a%20b/chat/completions");
    EXPECT_EQ(endpoint("https://h.example/%E4%BD%A0/"), "https://h.example/%E4%BD%A0/chat/completions");
    EXPECT_EQ(endpoint("https://h.example?version=1"), "https://h.example/chat/completions?version=1");
    EXPECT_EQ(endpoint("HTTP://localhost"), "HTTP://localhost/chat/completions");
}

TEST(ModelAPIConfiguration, RefusesWhatIsNoHTTPURLWithAHost) {
    for (const char* url : {"",
                            "   ",
                            "h.example/v1",
                            "ftp://h.example",
                            "file:///etc/hosts",
                            "https://",
                            "https:///v1",
                            "https:/v1",
                            "https:v1",
                            "https://:443/",
                            "https://?q",
                            "https://#f",
                            "https://user@/v1",
                            "https://h.example:99999",
                            "https://h.example:port",
                            "https://ex ample.com",
                            "https://[::1",
                            "https://h.example\\v1",
                            "javascript://h.example",
                            "https://h\x01/"}) {
        EXPECT_EQ(endpoint(url), std::nullopt) << url;
    }
    EXPECT_EQ(endpoint(std::string("https://h.example\0.evil", 23)), std::nullopt);
}

TEST(ModelAPIConfiguration, IsAuthenticatedByAKeyOrAHeaderOfItsStandard) {
    ModelAPIConfiguration openAI = configuration();
    openAI.apiKey = " \n";
    EXPECT_FALSE(openAI.hasAuthentication());
    openAI.customHeaders = {{"x-api-key", "k"}};
    EXPECT_FALSE(openAI.hasAuthentication());
    openAI.customHeaders = {{"authorization", "  "}};
    EXPECT_FALSE(openAI.hasAuthentication());
    openAI.customHeaders = {{"AUTHORIZATION", "Bearer k"}};
    EXPECT_TRUE(openAI.hasAuthentication());
    EXPECT_EQ(openAI.headerValue("Authorization"), "Bearer k");

    ModelAPIConfiguration anthropic = configuration(ModelAPIStandard::anthropic);
    anthropic.apiKey.clear();
    anthropic.customHeaders = {{"X-Api-Key", "k"}};
    EXPECT_TRUE(anthropic.hasAuthentication());
    anthropic.customHeaders = {{"X-API-KEY", ""}, {"authorization", "k"}};
    EXPECT_TRUE(anthropic.hasAuthentication());
    anthropic.customHeaders = {{"x-api-\u212Aey", "k"}};  // the Kelvin sign is no k on the wire
    EXPECT_FALSE(anthropic.hasAuthentication());
}

TEST(ModelAPIConfiguration, NormalizesHeaders) {
    ModelAPIConfiguration value = configuration();
    value.customHeaders = {{" X-One ", "\t1 "}, {"X-Empty", " "}, {"", "lost"}, {"X-TWO", "old"}, {"x-two", "new"}};
    EXPECT_EQ(value.normalizedHeaders(), (Headers{{"X-One", "1"}, {"x-two", "new"}}));
}

TEST(ModelAPIConfiguration, RefusesHeadersThatWouldBreakTheRequest) {
    using Entry = std::pair<std::string, std::string>;
    for (const auto& [name, value] : {Entry{" X-Foo: ", "v"},
                                      {"X\nY", "v"},
                                      {"X\rY", "v"},
                                      {"X", "a\r\nB: c"},
                                      {"X", "a\nb"},
                                      {"X", std::string("a\0b", 3)}}) {
        ModelAPIConfiguration broken = configuration();
        broken.customHeaders = {{name, value}};
        const std::string trimmed = name == " X-Foo: " ? "X-Foo:" : name;
        EXPECT_EQ(failure(broken), DeepSeekError::invalidHeader(trimmed));
    }
}

TEST(ModelAPIConfiguration, ReportsTheFirstShortcoming) {
    ModelAPIConfiguration value{
        .connectionURL = "nowhere", .apiKey = " ", .model = "\n", .customHeaders = {{"a:", "b"}}, .maxOutputTokens = 0};
    EXPECT_EQ(failure(value), DeepSeekError::missingAPIKey());
    value.apiKey = " key ";
    EXPECT_EQ(failure(value), DeepSeekError::missingModel());
    EXPECT_FALSE(value.isReady());
    value.model = " model ";
    EXPECT_EQ(failure(value), DeepSeekError::invalidConnectionURL());
    EXPECT_FALSE(value.isReady());
    value.connectionURL = "http://localhost";
    EXPECT_EQ(failure(value), DeepSeekError::invalidHeader("a:"));
    EXPECT_TRUE(value.isReady());
    value.customHeaders.clear();
    EXPECT_EQ(failure(value), DeepSeekError::invalidMaxOutputTokens());
    EXPECT_TRUE(value.isReady());
    value.maxOutputTokens = 1;
    EXPECT_EQ(failure(value), std::nullopt);
}

}  // namespace
}  // namespace ovrin
