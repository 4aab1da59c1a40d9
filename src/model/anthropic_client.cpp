#include "model/anthropic_client.h"

#include <utility>

#include "base/text.h"
#include "model/anthropic_types.h"

namespace ovrin {

namespace {

// The contents of the system messages, a blank line between them.
std::optional<std::string> systemText(const std::vector<DeepSeek::Message>& messages) {
    std::string joined;
    bool isFirst = true;
    for (const DeepSeek::Message& message : messages) {
        if (message.role != "system") continue;
        if (!std::exchange(isFirst, false)) joined += "\n\n";
        joined += message.content;
    }
    if (joined.empty()) return std::nullopt;
    return joined;
}

std::vector<Anthropic::Message> turns(const std::vector<DeepSeek::Message>& messages) {
    std::vector<Anthropic::Message> result;
    for (const DeepSeek::Message& message : messages) {
        if (message.role != "user" && message.role != "assistant") continue;
        result.push_back({.role = message.role, .content = message.content});
    }
    return result;
}

}  // namespace

AnthropicClient::AnthropicClient(EventLoop& loop, HTTPClientProtocol& httpClient, std::string endpoint,
                                 std::string apiKey, std::map<std::string, std::string> customHeaders,
                                 std::int64_t maxOutputTokens)
    : loop_(&loop),
      httpClient_(&httpClient),
      endpoint_(std::move(endpoint)),
      apiKey_(std::move(apiKey)),
      customHeaders_(std::move(customHeaders)),
      maxOutputTokens_(maxOutputTokens) {}

AsyncStream<std::string> AnthropicClient::stream(std::vector<DeepSeek::Message> messages, std::string model,
                                                 std::optional<double> temperature) const {
    return streamFrom<std::string>(
        *loop_, [client = *this, messages = std::move(messages), model = std::move(model), temperature](
                    StreamWriter<std::string>& pieces) { return run(client, messages, model, temperature, pieces); });
}

Task<std::string> AnthropicClient::complete(std::vector<DeepSeek::Message> messages, std::string model,
                                            std::optional<double> temperature) const {
    return runWhole(*this, std::move(messages), std::move(model), temperature);
}

HTTPRequest AnthropicClient::makeRequest(const std::vector<DeepSeek::Message>& messages, std::string model,
                                         std::optional<double> temperature, Delivery delivery) const {
    HTTPRequest request = makePostRequest(endpoint_,
                                          encode(Anthropic::Request{.model = std::move(model),
                                                                    .maxTokens = maxOutputTokens_,
                                                                    .system = systemText(messages),
                                                                    .messages = turns(messages),
                                                                    .temperature = temperature,
                                                                    .stream = delivery == Delivery::streamed}),
                                          delivery);
    request.headers.set("anthropic-version", std::string(Anthropic::version));
    setKey(request, text::trimmed(apiKey_), "x-api-key");
    setCustomHeaders(request, customHeaders_);
    return request;
}

DeepSeekError AnthropicClient::mapHTTPError(int status, std::string_view body) {
    auto decoded = Anthropic::decodeAPIErrorBody(body);
    if (!decoded) return httpStatusError(status, body);
    return DeepSeekError::apiError(std::move(decoded->error.message), std::move(decoded->error.type));
}

Task<void> AnthropicClient::run(AnthropicClient client, std::vector<DeepSeek::Message> messages, std::string model,
                                std::optional<double> temperature, StreamWriter<std::string>& pieces) {
    HTTPRequest request = client.makeRequest(messages, std::move(model), temperature, Delivery::streamed);
    co_await streamAnswer(*client.httpClient_, std::move(request), rules(), pieces);
}

Task<std::string> AnthropicClient::runWhole(AnthropicClient client, std::vector<DeepSeek::Message> messages,
                                            std::string model, std::optional<double> temperature) {
    HTTPRequest request = client.makeRequest(messages, std::move(model), temperature, Delivery::whole);
    const std::string body = co_await wholeAnswer(*client.httpClient_, std::move(request), rules());
    const auto response = Anthropic::decodeResponse(body);
    if (!response) throw decodingError(body, "content");
    std::string answer;
    for (const Anthropic::Response::ContentBlock& block : response->content) {
        if (block.type == "text") answer += block.text.value_or("");
    }
    if (answer.empty()) throw DeepSeekError::emptyResponse();
    co_return answer;
}

}  // namespace ovrin
