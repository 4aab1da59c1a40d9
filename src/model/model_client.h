// The one entry point to a language model: reads the connection settings anew for every call, and streams the answer or
// gives it whole in whichever wire standard they name.
//
// A value without state of its own; copies share nothing that changes. All work runs on the I/O loop, which must
// outlive it, as must the transport.
#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "base/async_stream.h"
#include "base/event_loop.h"
#include "base/task.h"
#include "model/anthropic_client.h"
#include "model/deep_seek_types.h"
#include "model/model_api_configuration.h"
#include "model/openai_compatible_client.h"
#include "platform/http_client.h"

namespace ovrin {

class ModelClient {
public:
    // Called on the I/O loop's thread.
    using ConfigurationProvider = std::function<ModelAPIConfiguration()>;

    ModelClient(EventLoop& ioLoop, HTTPClientProtocol& httpClient, ConfigurationProvider configurationProvider);

    // The pieces of the answer in the order in which the service sent them. From any thread; the stream is read on the
    // consumer's own loop. Ends with DeepSeekError (settings, network, service), or with what a body failed with;
    // dropping the stream ends the request.
    AsyncStream<std::string> stream(std::vector<DeepSeek::Message> messages, double temperature) const;

    // The whole answer, never empty. Awaited on any loop. Throws the same errors.
    Task<std::string> complete(std::vector<DeepSeek::Message> messages, double temperature) const;

private:
    using WireClient = std::variant<OpenAICompatibleClient, AnthropicClient>;

    WireClient makeWireClient(const ModelAPIConfiguration& configuration) const;
    static Task<void> runStream(ModelClient client, std::vector<DeepSeek::Message> messages, double temperature,
                                StreamWriter<std::string>& pieces);
    static Task<void> runComplete(ModelClient client, std::vector<DeepSeek::Message> messages, double temperature,
                                  StreamWriter<std::string>& answer);
    static Task<std::string> awaitAnswer(ModelClient client, std::vector<DeepSeek::Message> messages,
                                         double temperature);

    EventLoop* ioLoop_;
    HTTPClientProtocol* httpClient_;
    ConfigurationProvider configurationProvider_;
};

}  // namespace ovrin
