// Speaks the Anthropic messages protocol, with the same outward behaviour as the OpenAI-compatible client.
//
// A value, built for one call from a validated configuration. The loop and the transport must outlive its work.
#pragma once

#include <cstdint>
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

class AnthropicClient {
public:
    // The work of a stream runs on the loop. The endpoint is used as it is; the key is sent when it is not blank.
    AnthropicClient(EventLoop& loop, HTTPClientProtocol& httpClient, std::string endpoint, std::string apiKey,
                    std::map<std::string, std::string> customHeaders, std::int64_t maxOutputTokens);

    // The pieces of the answer as they arrive; an empty one says that the model thinks. Ends with DeepSeekError, or
    // with what the body failed with; dropping the stream ends the request.
    AsyncStream<std::string> stream(std::vector<DeepSeek::Message> messages, std::string model,
                                    std::optional<double> temperature) const;

    // The whole answer, never empty. Throws DeepSeekError.
    Task<std::string> complete(std::vector<DeepSeek::Message> messages, std::string model,
                               std::optional<double> temperature) const;

    HTTPRequest makeRequest(const std::vector<DeepSeek::Message>& messages, std::string model,
                            std::optional<double> temperature, Delivery delivery) const;

    static DeepSeekError mapHTTPError(int status, std::string_view body);

private:
    static constexpr AnswerRules rules() { return {decodeAnthropicEventLine, mapHTTPError}; }
    static Task<void> run(AnthropicClient client, std::vector<DeepSeek::Message> messages, std::string model,
                          std::optional<double> temperature, StreamWriter<std::string>& pieces);
    static Task<std::string> runWhole(AnthropicClient client, std::vector<DeepSeek::Message> messages,
                                      std::string model, std::optional<double> temperature);

    EventLoop* loop_;
    HTTPClientProtocol* httpClient_;
    std::string endpoint_;
    std::string apiKey_;
    std::map<std::string, std::string> customHeaders_;
    std::int64_t maxOutputTokens_;
};

}  // namespace ovrin
