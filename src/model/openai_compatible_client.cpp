#include "model/openai_compatible_client.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "model/model_api_standard.h"
#include "model/request_url.h"

namespace ovrin {

OpenAICompatibleClient::OpenAICompatibleClient(EventLoop& loop, HTTPClientProtocol& httpClient, std::string baseURL,
                                               APIKeyProvider apiKeyProvider,
                                               std::map<std::string, std::string> customHeaders)
    : loop_(&loop),
      httpClient_(&httpClient),
      baseURL_(std::move(baseURL)),
      apiKeyProvider_(std::move(apiKeyProvider)),
      customHeaders_(std::move(customHeaders)) {}

AsyncStream<std::string> OpenAICompatibleClient::stream(std::vector<DeepSeek::Message> messages, std::string model,
                                                        std::optional<double> temperature) const {
    return streamFrom<std::string>(
        *loop_, [client = *this, messages = std::move(messages), model = std::move(model), temperature](
                    StreamWriter<std::string>& pieces) { return run(client, messages, model, temperature, pieces); });
}

Task<std::string> OpenAICompatibleClient::complete(std::vector<DeepSeek::Message> messages, std::string model,
                                                   std::optional<double> temperature) const {
    return runWhole(*this, std::move(messages), std::move(model), temperature);
}

HTTPRequest OpenAICompatibleClient::makeRequest(const std::vector<DeepSeek::Message>& messages, std::string model,
                                                std::optional<double> temperature, Delivery delivery) const {
    const std::string storedKey = apiKeyProvider_().value_or("");
    const std::string_view key = text::trimmed(storedKey);
    if (key.empty() && !hasCustomAuthorization()) throw DeepSeekError::missingAPIKey();
    HTTPRequest request = makePostRequest(endpointURL(baseURL_),
                                          encode(DeepSeek::ChatRequest{.model = std::move(model),
                                                                       .messages = messages,
                                                                       .temperature = temperature,
                                                                       .stream = delivery == Delivery::streamed}),
                                          delivery);
    setKey(request, key, "Authorization", "Bearer ");
    setCustomHeaders(request, customHeaders_);
    return request;
}

std::string OpenAICompatibleClient::endpointURL(std::string_view from) {
    const auto url = RequestURL::parse(from);
    if (!url) throw DeepSeekError::invalidConnectionURL();
    const std::string_view suffix = pathSuffix(ModelAPIStandard::openAICompatible);
    return url->pathEndsWith(suffix) ? url->string() : url->appendingPathComponent(suffix).string();
}

DeepSeekError OpenAICompatibleClient::mapHTTPError(int status, std::string_view body) {
    auto decoded = DeepSeek::decodeAPIErrorBody(body);
    if (!decoded) return httpStatusError(status, body);
    auto& error = decoded->error;
    return DeepSeekError::apiError(std::move(error.message), std::move(error.type), std::move(error.code));
}

bool OpenAICompatibleClient::hasCustomAuthorization() const {
    return std::ranges::any_of(customHeaders_, [](const auto& header) {
        return text::equalsIgnoringAsciiCase(header.first, "Authorization") && !header.second.empty();
    });
}

Task<void> OpenAICompatibleClient::run(OpenAICompatibleClient client, std::vector<DeepSeek::Message> messages,
                                       std::string model, std::optional<double> temperature,
                                       StreamWriter<std::string>& pieces) {
    HTTPRequest request = client.makeRequest(messages, std::move(model), temperature, Delivery::streamed);
    co_await streamAnswer(*client.httpClient_, std::move(request), rules(), pieces);
}

Task<std::string> OpenAICompatibleClient::runWhole(OpenAICompatibleClient client,
                                                   std::vector<DeepSeek::Message> messages, std::string model,
                                                   std::optional<double> temperature) {
    HTTPRequest request = client.makeRequest(messages, std::move(model), temperature, Delivery::whole);
    const std::string body = co_await wholeAnswer(*client.httpClient_, std::move(request), rules());
    auto response = DeepSeek::decodeChatResponse(body);
    if (!response) throw decodingError(body, "choices");
    if (response->choices.empty() || response->choices.front().message.content.empty()) {
        throw DeepSeekError::emptyResponse();
    }
    co_return std::move(response->choices.front().message.content);
}

}  // namespace ovrin
