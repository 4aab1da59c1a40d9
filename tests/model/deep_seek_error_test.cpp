#include "model/deep_seek_error.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

TEST(DeepSeekError, SaysWhatTheUserReads) {
    const std::vector<std::pair<DeepSeekError, std::string>> table = {
        {DeepSeekError::invalidHeader("X-Foo:"), "Header“X-Foo:”格式无效。"},
        {DeepSeekError::invalidHeader(""), "自定义 Header 格式无效。"},
        {DeepSeekError::apiError("Bad key", "auth_error", "invalid_api_key"), "Bad key（invalid_api_key）"},
        {DeepSeekError::apiError("Overloaded", "overloaded_error"), "Overloaded"},
        {DeepSeekError::httpStatus(429), "请求失败（HTTP 429）"},
        {DeepSeekError::httpStatus(429, ""), "请求失败（HTTP 429）"},
        {DeepSeekError::httpStatus(401, " no \n"), "请求失败（HTTP 401）： no \n"},
        {DeepSeekError::transport("超时。"), "网络连接失败：超时。"},
        {DeepSeekError::decoding("坏。"), "响应解析失败：坏。"},
        {DeepSeekError::missingAPIKey(), "尚未配置 API Key 或认证 Header，请先在设置中填写。"},
        {DeepSeekError::missingModel(), "尚未填写模型名称。"},
        {DeepSeekError::invalidConnectionURL(), "连接 URL 无效，请填写完整的 HTTP 或 HTTPS 地址。"},
        {DeepSeekError::invalidMaxOutputTokens(), "最大输出 Token 必须大于 0。"},
        {DeepSeekError::invalidResponse(), "服务返回了无法识别的响应。"},
        {DeepSeekError::emptyResponse(), "服务没有返回内容，请稍后重试。"},
    };
    for (const auto& [error, description] : table) EXPECT_EQ(error.errorDescription(), description);
}

TEST(DeepSeekError, IsEqualInCaseAndEverythingItCarries) {
    EXPECT_EQ(DeepSeekError::apiError("m", "t", "c"), DeepSeekError::apiError("m", "t", "c"));
    EXPECT_NE(DeepSeekError::apiError("m", "t"), DeepSeekError::apiError("m"));  // though the text is the same
    EXPECT_NE(DeepSeekError::httpStatus(500), DeepSeekError::httpStatus(500, ""));
    EXPECT_NE(DeepSeekError::transport("x"), DeepSeekError::decoding("x"));
}

}  // namespace
}  // namespace ovrin
