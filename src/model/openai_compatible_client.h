// Speaks the OpenAI-compatible chat-completions protocol: one POST, answered whole or as server-sent events.
//
// A value, built for one call from a validated configuration. The loop and the transport must outlive its work.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/async_stream.h"
#include "base/event_loop.h"
#include "base/task.h"
#include "model/deep_seek_error.h"
#include "model/deep_seek_types.h"
#include "model/model_exchange.h"
#include "platform/http_client.h"

namespace ovrin {

class OpenAICompatibleClient {
public:
    using APIKeyProvider = std::function<std::optional<std::string>()>;

    // The work of a stream runs on the loop; apiKeyProvider is called there.
    OpenAICompatibleClient(EventLoop& loop, HTTPClientProtocol& httpClient, std::string baseURL,
                           APIKeyProvider apiKeyProvider, std::map<std::string, std::string> customHeaders);

    // The pieces of the answer as they arrive; an empty one says that the model thinks. Ends with DeepSeekError, or
    // with what the body failed with; dropping the stream ends the request.
    AsyncStream<std::string> stream(std::vector<DeepSeek::Message> messages, std::string model,
                                    std::optional<double> temperature) const;

    // The whole answer, never empty. Throws DeepSeekError.
    Task<std::string> complete(std::vector<DeepSeek::Message> messages, std::string model,
                               std::optional<double> temperature) const;

    // Throws DeepSeekError missingAPIKey when neither a key nor an Authorization header is there.
    HTTPRequest makeRequest(const std::vector<DeepSeek::Message>& messages, std::string model,
                            std::optional<double> temperature, Delivery delivery) const;

    // The URL with the protocol's path at its end. Throws DeepSeekError invalidConnectionURL.
    static std::string endpointURL(std::string_view from);

    static DeepSeekError mapHTTPError(int status, std::string_view body);

private:
    static constexpr AnswerRules rules() { return {decodeOpenAICompatibleEventLine, mapHTTPError}; }
    static Task<void> run(OpenAICompatibleClient client, std::vector<DeepSeek::Message> messages, std::string model,
                          std::optional<double> temperature, StreamWriter<std::string>& pieces);
    static Task<std::string> runWhole(OpenAICompatibleClient client, std::vector<DeepSeek::Message> messages,
                                      std::string model, std::optional<double> temperature);

    bool hasCustomAuthorization() const;

    EventLoop* loop_;
    HTTPClientProtocol* httpClient_;
    std::string baseURL_;
    APIKeyProvider apiKeyProvider_;
    std::map<std::string, std::string> customHeaders_;
};

}  // namespace ovrin
