#include "model/model_client.h"

#include <optional>
#include <set>
#include <utility>

#include "model/model_exchange.h"
#include "model/thinking_filter.h"

namespace ovrin {

namespace {

Task<ModelAPIConfiguration> readOn(WorkerExecutor& worker, std::function<ModelAPIConfiguration()> read) {
    auto call = [read = std::move(read)](const std::stop_token&) { return read(); };
    co_return co_await worker.run(std::move(call));
}

// Hands on what the filter makes of an answer; at its end, whatever that is, the filter gives what it has kept.
class FilteredAnswer {
public:
    explicit FilteredAnswer(StreamWriter<AnswerChange>& changes) : changes_(changes) {}
    FilteredAnswer(const FilteredAnswer&) = delete;
    FilteredAnswer& operator=(const FilteredAnswer&) = delete;
    ~FilteredAnswer() {
        filter_.finish(found_);
        push();
    }

    void feed(std::string_view piece) {
        filter_.feed(piece, found_);
        push();
    }

private:
    void push() {
        for (AnswerChange& change : found_) changes_.push(std::move(change));
        found_.clear();
    }

    StreamWriter<AnswerChange>& changes_;
    ThinkingFilter filter_;
    std::vector<AnswerChange> found_;
};

Task<void> forward(AsyncStream<std::string> pieces, StreamWriter<AnswerChange>& changes) {
    FilteredAnswer answer(changes);
    while (true) {
        const std::optional<std::string> piece = co_await pieces.next();
        if (!piece) co_return;
        answer.feed(*piece);
    }
}

Task<void> forward(Task<std::string> whole, StreamWriter<std::string>& answer) {
    const std::string given = co_await std::move(whole);
    std::string text = withoutThinking(given);
    if (text.empty()) throw DeepSeekError::emptyResponse();
    answer.push(std::move(text));
}

}  // namespace

// Of the I/O loop's thread.
struct ModelClient::ServiceLearned {
    using Model = std::pair<std::string, std::string>;  // the URL of its requests, and its name

    std::set<Model> refusesTemperature;
};

ModelClient::ModelClient(EventLoop& ioLoop, HTTPClientProtocol& httpClient, ConfigurationProvider configurationProvider)
    : ioLoop_(&ioLoop),
      httpClient_(&httpClient),
      configurationProvider_(std::move(configurationProvider)),
      learned_(std::make_shared<ServiceLearned>()) {}

ModelClient ModelClient::withConfiguration(ModelAPIConfiguration configuration) const {
    ModelClient client = *this;
    client.configurationProvider_ = [configuration = std::move(configuration)] { return finished(configuration); };
    return client;
}

ModelClient::ConfigurationProvider ModelClient::readingOn(WorkerExecutor& worker,
                                                          std::function<ModelAPIConfiguration()> read) {
    return [&worker, read = std::move(read)] { return readOn(worker, read); };
}

AsyncStream<AnswerChange> ModelClient::stream(std::vector<DeepSeek::Message> messages, double temperature) const {
    return streamFrom<AnswerChange>(
        *ioLoop_, [client = *this, messages = std::move(messages), temperature](StreamWriter<AnswerChange>& changes) {
            return runStream(client, messages, temperature, changes);
        });
}

Task<std::string> ModelClient::complete(std::vector<DeepSeek::Message> messages, double temperature) const {
    return awaitAnswer(*this, std::move(messages), temperature);
}

ModelClient::WireClient ModelClient::makeWireClient(const ModelAPIConfiguration& configuration) const {
    std::string endpoint = configuration.endpointURL();
    auto headers = configuration.normalizedHeaders();
    if (configuration.standard == ModelAPIStandard::anthropic) {
        return AnthropicClient(*ioLoop_, *httpClient_, std::move(endpoint), configuration.apiKey, std::move(headers),
                               configuration.maxOutputTokens);
    }
    return OpenAICompatibleClient(
        *ioLoop_, *httpClient_, std::move(endpoint), [key = configuration.apiKey] { return key; }, std::move(headers));
}

Task<void> ModelClient::runStream(ModelClient client, std::vector<DeepSeek::Message> messages, double temperature,
                                  StreamWriter<AnswerChange>& changes) {
    const ModelAPIConfiguration configuration = co_await client.configurationProvider_();
    const WireClient wireClient = client.makeWireClient(configuration.validated());
    Attempt attempt = [&](std::optional<double> sent) {
        return forward(
            std::visit([&](const auto& wire) { return wire.stream(messages, configuration.model, sent); }, wireClient),
            changes);
    };
    co_await run(client, configuration, std::move(attempt), temperature);
}

Task<void> ModelClient::runComplete(ModelClient client, std::vector<DeepSeek::Message> messages, double temperature,
                                    StreamWriter<std::string>& answer) {
    const ModelAPIConfiguration configuration = co_await client.configurationProvider_();
    const WireClient wireClient = client.makeWireClient(configuration.validated());
    Attempt attempt = [&](std::optional<double> sent) {
        return forward(std::visit([&](const auto& wire) { return wire.complete(messages, configuration.model, sent); },
                                  wireClient),
                       answer);
    };
    co_await run(client, configuration, std::move(attempt), temperature);
}

// Newer models of both standards refuse any temperature.
Task<void> ModelClient::run(ModelClient client, ModelAPIConfiguration configuration, Attempt attempt,
                            double temperature) {
    auto& refusing = client.learned_->refusesTemperature;
    const ServiceLearned::Model model{configuration.endpointURL(), configuration.model};
    if (!refusing.contains(model)) {
        try {
            co_await attempt(temperature);
            co_return;
        } catch (const RefusedTemperature&) {
            refusing.insert(model);
        }
    }
    co_await attempt(std::nullopt);
}

// The answer crosses from the I/O loop to the caller's as a stream of one piece.
Task<std::string> ModelClient::awaitAnswer(ModelClient client, std::vector<DeepSeek::Message> messages,
                                           double temperature) {
    AsyncStream<std::string> answer =
        streamFrom<std::string>(*client.ioLoop_, [client, messages, temperature](StreamWriter<std::string>& writer) {
            return runComplete(client, messages, temperature, writer);
        });
    std::optional<std::string> text = co_await answer.next();
    co_return std::move(text).value();
}

}  // namespace ovrin
