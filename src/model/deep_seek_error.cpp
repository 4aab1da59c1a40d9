#include "model/deep_seek_error.h"

#include <utility>

namespace ovrin {

namespace {

using Case = DeepSeekError::Case;
using Payload = DeepSeekError::Payload;

std::string describeStatus(const Payload& payload) {
    const std::string start = "请求失败（HTTP " + std::to_string(payload.status);
    if (payload.body && !payload.body->empty()) return start + "）：" + *payload.body;
    return start + "）";
}

std::string describe(Case errorCase, const Payload& payload) {
    switch (errorCase) {
        case Case::invalidHeader:
            return payload.text.empty() ? "自定义 Header 格式无效。" : "Header“" + payload.text + "”格式无效。";
        case Case::apiError:
            return payload.code ? payload.text + "（" + *payload.code + "）" : payload.text;
        case Case::httpStatus:
            return describeStatus(payload);
        case Case::transport:
            return "网络连接失败：" + payload.text;
        case Case::decoding:
            return "响应解析失败：" + payload.text;
        case Case::missingAPIKey:
            return "尚未配置 API Key 或认证 Header，请先在设置中填写。";
        case Case::missingModel:
            return "尚未填写模型名称。";
        case Case::invalidConnectionURL:
            return "连接 URL 无效，请填写完整的 HTTP 或 HTTPS 地址。";
        case Case::invalidMaxOutputTokens:
            return "最大输出 Token 必须大于 0。";
        case Case::invalidResponse:
            return "服务返回了无法识别的响应。";
        case Case::emptyResponse:
            return "服务没有返回内容，请稍后重试。";
    }
    return {};
}

}  // namespace

DeepSeekError::DeepSeekError(Case errorCase, Payload payload)
    : Error(describe(errorCase, payload)), case_(errorCase), payload_(std::move(payload)) {}

DeepSeekError DeepSeekError::invalidHeader(std::string name) {
    return DeepSeekError(Case::invalidHeader, {.text = std::move(name)});
}

DeepSeekError DeepSeekError::apiError(std::string message, std::optional<std::string> type,
                                      std::optional<std::string> code) {
    return DeepSeekError(Case::apiError,
                         {.text = std::move(message), .type = std::move(type), .code = std::move(code)});
}

DeepSeekError DeepSeekError::httpStatus(std::int64_t status, std::optional<std::string> body) {
    return DeepSeekError(Case::httpStatus, {.status = status, .body = std::move(body)});
}

DeepSeekError DeepSeekError::transport(std::string description) {
    return DeepSeekError(Case::transport, {.text = std::move(description)});
}

DeepSeekError DeepSeekError::decoding(std::string description) {
    return DeepSeekError(Case::decoding, {.text = std::move(description)});
}

DeepSeekError DeepSeekError::missingAPIKey() {
    return DeepSeekError(Case::missingAPIKey, {});
}
DeepSeekError DeepSeekError::missingModel() {
    return DeepSeekError(Case::missingModel, {});
}
DeepSeekError DeepSeekError::invalidConnectionURL() {
    return DeepSeekError(Case::invalidConnectionURL, {});
}
DeepSeekError DeepSeekError::invalidMaxOutputTokens() {
    return DeepSeekError(Case::invalidMaxOutputTokens, {});
}
DeepSeekError DeepSeekError::invalidResponse() {
    return DeepSeekError(Case::invalidResponse, {});
}
DeepSeekError DeepSeekError::emptyResponse() {
    return DeepSeekError(Case::emptyResponse, {});
}

}  // namespace ovrin
