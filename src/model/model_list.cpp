#include "model/model_list.h"

#include <chrono>
#include <utility>

#include "base/async_stream.h"
#include "base/error.h"
#include "base/text.h"
#include "model/anthropic_client.h"
#include "model/anthropic_types.h"
#include "model/model_exchange.h"
#include "model/openai_compatible_client.h"
#include "model/request_url.h"
#include "model/wire_decoding.h"

namespace ovrin {

namespace {

constexpr auto patience = std::chrono::seconds(10);
// A list of 10,000 models with all that is usually told of each takes about 6 MB.
constexpr std::size_t maximumListSize = std::size_t{8} << 20U;  // bytes

struct Entry {
    std::string id;
    std::optional<std::string> owner;
};

bool readEntry(JSONReader& reader, Entry& entry) {
    entry = {};
    return readRecord(reader, required("id", entry.id), optional("owned_by", entry.owner));
}

Task<std::string> collectList(AsyncStream<std::string> chunks) {
    std::string body;
    while (true) {
        const std::optional<std::string> chunk = co_await chunks.next();
        if (!chunk) co_return body;
        body += *chunk;
        if (body.size() > maximumListSize) throw Error("服务的模型列表过大（超过 8 MB）。");
    }
}

Task<ModelList> fetch(HTTPClientProtocol& http, HTTPRequest request) {
    HTTPBytes answer = co_await openAnswer(http, std::move(request));
    if (!answer.response.statusCode) throw DeepSeekError::invalidResponse();
    const int status = *answer.response.statusCode;
    if (!answer.response.isSuccess()) {
        const std::string body = co_await collectErrorBody(std::move(answer.body));
        if (status == 404 || status == 405)
            throw Error("此服务不提供模型列表（HTTP " + std::to_string(status) + "）。");
        throw OpenAICompatibleClient::mapHTTPError(status, body);
    }
    const std::string body = co_await collectList(std::move(answer.body));
    std::optional<ModelList> list = decodeModelList(body);
    if (!list) throw Error("服务返回的不是模型列表。");
    co_return *std::move(list);
}

Task<void> pushList(HTTPClientProtocol& http, HTTPRequest request, StreamWriter<ModelList>& writer) {
    ModelList list = co_await fetch(http, std::move(request));
    writer.push(std::move(list));
}

}  // namespace

std::optional<ModelList> decodeModelList(std::string_view body) {
    auto entries = decodeWhole<std::vector<Entry>>(body, [](JSONReader& reader, std::vector<Entry>& list) {
        return readRecord(reader, required("data", [&list](JSONReader& value) {
                              return value.readNull() || readList(value, list, readEntry);
                          }));
    });
    if (!entries) return std::nullopt;
    ModelList list;
    for (Entry& entry : *entries) {
        if (!list.owner) list.owner = entry.owner;
        if (!text::trimmed(entry.id).empty()) list.names.push_back(std::move(entry.id));
    }
    return list;
}

HTTPRequest modelListRequest(const ModelAPIConfiguration& configuration) {
    const auto url = RequestURL::parse(text::trimmed(configuration.connectionURL));
    if (!url) throw DeepSeekError::invalidConnectionURL();
    HTTPRequest request;
    request.url = url->removingPathSuffix("/" + std::string(pathSuffix(configuration.standard)))
                      .appendingPathComponent("models")
                      .string();
    request.headers.set("Accept", "application/json");
    request.redirects = HTTPRedirects::none;
    request.timeout = patience;
    const std::string_view key = text::trimmed(configuration.apiKey);
    if (configuration.standard == ModelAPIStandard::anthropic) {
        request.headers.set("anthropic-version", std::string(Anthropic::version));
        setKey(request, key, "x-api-key");
    } else {
        setKey(request, key, "Authorization", "Bearer ");
    }
    setCustomHeaders(request, configuration.normalizedHeaders());
    return request;
}

// The list crosses from the I/O loop to the caller's as a stream of one.
Task<ModelList> fetchModelList(EventLoop& ioLoop, HTTPClientProtocol& http, HTTPRequest request) {
    AsyncStream<ModelList> answer = streamFrom<ModelList>(
        ioLoop, [&http, request](StreamWriter<ModelList>& writer) { return pushList(http, request, writer); });
    std::optional<ModelList> list = co_await answer.next();
    co_return std::move(list).value();
}

}  // namespace ovrin
