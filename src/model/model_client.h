// The one entry point to a language model: reads the connection settings anew for every call, and streams the answer or
// gives it whole in whichever wire standard they name.
//
// A value; copies share what has been learned of services, such as which models take no temperature. All work runs on
// the I/O loop, which must outlive it, as must the transport.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/async_stream.h"
#include "base/event_loop.h"
#include "base/task.h"
#include "base/worker_executor.h"
#include "model/answer_change.h"
#include "model/anthropic_client.h"
#include "model/deep_seek_types.h"
#include "model/model_api_configuration.h"
#include "model/openai_compatible_client.h"
#include "platform/http_client.h"

namespace ovrin {

class ModelClient {
public:
    // Called and awaited on the I/O loop, which carries every other answer meanwhile: it must not block.
    using ConfigurationProvider = std::function<Task<ModelAPIConfiguration>()>;

    // The provider for settings that may take their time, such as a key in a keyring that is locked: read is called on
    // the worker, which must exist as long as calls are made, and which answers those that wait when it goes.
    static ConfigurationProvider readingOn(WorkerExecutor& worker, std::function<ModelAPIConfiguration()> read);

    ModelClient(EventLoop& ioLoop, HTTPClientProtocol& httpClient, ConfigurationProvider configurationProvider);

    // The same client with these settings for every call.
    ModelClient withConfiguration(ModelAPIConfiguration configuration) const;

    // The answer as it grows, in the order in which the service sent it, without what the model thinks. From any
    // thread; the stream is read on the consumer's own loop. Ends with DeepSeekError (settings, network, service), or
    // with what a body failed with; dropping the stream ends the request.
    AsyncStream<AnswerChange> stream(std::vector<DeepSeek::Message> messages, double temperature) const;

    // The whole answer without what the model thinks, never empty. Awaited on any loop. Throws the same errors.
    Task<std::string> complete(std::vector<DeepSeek::Message> messages, double temperature) const;

private:
    struct ServiceLearned;
    using Attempt = std::function<Task<void>(std::optional<double> temperature)>;
    using WireClient = std::variant<OpenAICompatibleClient, AnthropicClient>;

    WireClient makeWireClient(const ModelAPIConfiguration& configuration) const;
    static Task<void> runStream(ModelClient client, std::vector<DeepSeek::Message> messages, double temperature,
                                StreamWriter<AnswerChange>& changes);
    static Task<void> runComplete(ModelClient client, std::vector<DeepSeek::Message> messages, double temperature,
                                  StreamWriter<std::string>& answer);
    static Task<void> run(ModelClient client, ModelAPIConfiguration configuration, Attempt attempt, double temperature);
    static Task<std::string> awaitAnswer(ModelClient client, std::vector<DeepSeek::Message> messages,
                                         double temperature);

    EventLoop* ioLoop_;
    HTTPClientProtocol* httpClient_;
    ConfigurationProvider configurationProvider_;
    std::shared_ptr<ServiceLearned> learned_;
};

}  // namespace ovrin
