#include "model/model_exchange.h"

#include <chrono>
#include <optional>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "base/text.h"
#include "model/json_reader.h"
#include "model/line_reader.h"
#include "model/local_service.h"

namespace ovrin {

namespace {

// An error body is cut at its bound, and not in the middle of a character. The client may have cut it there already.
void boundErrorBody(std::string& body) {
    if (body.size() < maximumErrorBodySize) return;
    body.resize(maximumErrorBodySize);
    const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    std::size_t lastCharacter = body.size() - 1;
    while (lastCharacter > 0 && isContinuation(body[lastCharacter])) --lastCharacter;
    if (!text::isValidUtf8(std::string_view(body).substr(lastCharacter))) body.resize(lastCharacter);
}

// Pushes what one line delivers, unless the task has been told to stop.
StreamProgress forwardLine(std::string_view line, DecodeEventLine decode, const std::stop_token& stop,
                           StreamWriter<std::string>& pieces) {
    if (stop.stop_requested()) throw CancellationError();
    std::vector<std::string> delivered;
    const StreamProgress progress = decode(line, delivered);
    for (std::string& piece : delivered) pieces.push(std::move(piece));
    if (progress == StreamProgress::thinking) pieces.push({});
    return progress;
}

Task<void> forwardLines(AsyncStream<std::string> body, DecodeEventLine decode, StreamWriter<std::string>& pieces) {
    const TaskContext context = co_await currentContext();
    LineReader lines;
    while (true) {
        std::optional<std::string> chunk = co_await body.next();
        if (!chunk) break;
        lines.append(std::move(*chunk));
        while (const auto line = lines.next()) {
            if (forwardLine(*line, decode, context.stop, pieces) == StreamProgress::finished) co_return;
        }
    }
    if (const auto last = lines.finish()) forwardLine(*last, decode, context.stop, pieces);
}

// Some services give the error's fields beside "error", some in it.
bool refusesTemperature(int status, std::string_view body) {
    constexpr int badRequest = 400;
    constexpr std::string_view name = "temperature";
    if (status != badRequest) return false;
    const auto document = json::parse(body);
    if (!document) return false;
    const json::Value* const inner = json::member(*document, "error");
    const json::Value& error = inner != nullptr && inner->is_object() ? *inner : *document;
    const auto message = json::string(error, inner != nullptr && inner->is_string() ? "error" : "message");
    return json::string(error, "param") == name ||
           text::asciiLowercased(message.value_or("")).find(name) != std::string::npos;
}

[[noreturn]] void throwHTTPError(const AnswerRules& rules, int status, std::string_view body) {
    if (refusesTemperature(status, body)) throw RefusedTemperature(rules.mapHTTPError(status, body));
    throw rules.mapHTTPError(status, body);
}

}  // namespace

HTTPRequest makePostRequest(std::string url, std::string body, Delivery delivery) {
    HTTPRequest request;
    request.url = std::move(url);
    request.method = "POST";
    request.timeout = std::chrono::seconds(90);
    request.headers.set("Content-Type", "application/json");
    request.headers.set("Accept", delivery == Delivery::streamed ? "text/event-stream" : "application/json");
    request.body = std::move(body);
    return request;
}

void setKey(HTTPRequest& request, std::string_view key, std::string_view header, std::string_view prefix) {
    if (key.empty()) return;
    request.headers.set(std::string(header), std::string(prefix).append(key));
    if (key == localServiceKey) request.proxies = HTTPProxies::none;
}

void setCustomHeaders(HTTPRequest& request, const std::map<std::string, std::string>& customHeaders) {
    for (const auto& [name, value] : customHeaders) request.headers.set(name, value);
}

Task<HTTPBytes> openAnswer(HTTPClientProtocol& httpClient, HTTPRequest request) {
    try {
        HTTPBytes answer = co_await httpClient.bytes(std::move(request));
        co_return answer;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& failure) {
        throw DeepSeekError::transport(failure.what());
    }
}

Task<std::string> collectErrorBody(AsyncStream<std::string> chunks) {
    std::string body;
    while (body.size() <= maximumErrorBodySize) {
        const std::optional<std::string> chunk = co_await chunks.next();
        if (!chunk) break;
        body += *chunk;
    }
    boundErrorBody(body);
    co_return body;
}

Task<void> streamAnswer(HTTPClientProtocol& httpClient, HTTPRequest request, AnswerRules rules,
                        StreamWriter<std::string>& pieces) {
    HTTPBytes answer = co_await openAnswer(httpClient, std::move(request));
    if (!answer.response.statusCode) throw DeepSeekError::invalidResponse();
    if (!answer.response.isSuccess()) {
        const std::string body = co_await collectErrorBody(std::move(answer.body));
        throwHTTPError(rules, *answer.response.statusCode, body);
    }
    co_await forwardLines(std::move(answer.body), rules.decodeEventLine, pieces);
}

Task<std::string> wholeAnswer(HTTPClientProtocol& httpClient, HTTPRequest request, AnswerRules rules) {
    HTTPData answer;
    try {
        answer = co_await httpClient.data(std::move(request));
    } catch (const CancellationError&) {
        throw;
    } catch (const DeepSeekError&) {
        throw;
    } catch (const std::exception& failure) {
        throw DeepSeekError::transport(failure.what());
    }
    if (!answer.response.statusCode) throw DeepSeekError::invalidResponse();
    if (!answer.response.isSuccess()) {
        boundErrorBody(answer.body);
        throwHTTPError(rules, *answer.response.statusCode, answer.body);
    }
    co_return std::move(answer.body);
}

DeepSeekError httpStatusError(int status, std::string_view body) {
    if (!text::isValidUtf8(body)) return DeepSeekError::httpStatus(status);
    return DeepSeekError::httpStatus(status, std::string(body));
}

DeepSeekError decodingError(std::string_view body, std::string_view field) {
    JSONReader reader(body);
    reader.skip();
    if (!reader.isComplete()) return DeepSeekError::decoding("内容不是有效的 JSON。");
    return DeepSeekError::decoding("缺少有效的 " + std::string(field) + " 字段。");
}

}  // namespace ovrin
