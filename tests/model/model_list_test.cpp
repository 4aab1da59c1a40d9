#include "model/model_list.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/recorded_answers.h"

namespace ovrin {
namespace {

using Strings = std::vector<std::string>;

TEST(ModelListDecoding, ReadsWhatServersAnswer) {
    EXPECT_EQ(decodeModelList(recorded::llamaCppModels), (ModelList{{"SmolLM2-135M-Instruct"}, "llamacpp"}));
    EXPECT_EQ(decodeModelList(recorded::ollamaModels), (ModelList{{"qwen3:8b", "llama3.2:latest"}, "library"}));
    EXPECT_EQ(decodeModelList(recorded::ollamaWithoutModels), ModelList());
    EXPECT_EQ(decodeModelList(recorded::lmStudioModels), (ModelList{{"qwen2.5-7b-instruct"}, "organization_owner"}));
    EXPECT_EQ(decodeModelList(recorded::vllmModels), (ModelList{{"Qwen/Qwen3-8B"}, "vllm"}));
    const auto anthropic = decodeModelList(
        R"({"data":[{"type":"model","id":"claude-a","display_name":"A","created_at":"2026-01-01T00:00:00Z"}],)"
        R"("has_more":false,"first_id":"claude-a","last_id":"claude-a"})");
    EXPECT_EQ(anthropic, (ModelList{{"claude-a"}, {}}));
    for (const char* other : {"<!doctype html>", "", "[]", "{}", R"({"data":{}})", R"({"data":[{"name":"a"}]})"}) {
        EXPECT_EQ(decodeModelList(other), std::nullopt) << other;
    }
}

TEST(ModelListRequest, GoesToTheServiceOfTheFieldWithItsKeyAlone) {
    ModelAPIConfiguration configuration{.connectionURL = " https://h/v1/chat/Completions/?v=1 ",
                                        .apiKey = " k ",
                                        .model = "",
                                        .customHeaders = {{"X-A", "1"}},
                                        .maxOutputTokens = 0};
    HTTPRequest request = modelListRequest(configuration);
    EXPECT_EQ(request.url, "https://h/v1/models?v=1");
    EXPECT_EQ(request.headers.value("Authorization"), "Bearer k");
    EXPECT_EQ(request.headers.value("X-A"), "1");
    EXPECT_EQ(request.redirects, HTTPRedirects::none);
    configuration.standard = ModelAPIStandard::anthropic;
    configuration.connectionURL = "https://h/v1";
    request = modelListRequest(configuration);
    EXPECT_EQ(request.url, "https://h/v1/models");
    EXPECT_EQ(request.headers.value("x-api-key"), "k");
    EXPECT_EQ(request.headers.value("Authorization"), "");
}

}  // namespace
}  // namespace ovrin
