#include "practice/practice_protocol.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "base/text.h"
#include "fakes/loopback_server.h"

namespace ovrin {
namespace {

using json::Value;
using Standard = PracticeRequest::Standard;

constexpr std::string_view modelName = "ovrin-practice";
constexpr std::string_view jsonHeaders = "Content-Type: application/json\r\nServer: ovrin-practice-service\r\n";

std::optional<Standard> standardOf(std::string_view request) {
    const std::string_view line = request.substr(0, request.find("\r\n"));
    if (line.starts_with("POST ") && line.find("/chat/completions ") != std::string_view::npos)
        return Standard::openAICompatible;
    if (line.starts_with("POST ") && line.find("/messages ") != std::string_view::npos) return Standard::anthropic;
    return std::nullopt;
}

// The value of a header line; name in lower case.
std::string headerOf(std::string_view head, std::string_view name) {
    while (!head.empty()) {
        const std::string_view line = head.substr(0, head.find("\r\n"));
        head.remove_prefix(std::min(line.size() + 2, head.size()));
        const std::size_t colon = line.find(':');
        if (colon != std::string_view::npos && text::equalsIgnoringAsciiCase(line.substr(0, colon), name))
            return std::string(text::trimmed(line.substr(colon + 1)));
    }
    return {};
}

std::string keyOf(std::string_view head, Standard standard) {
    if (standard == Standard::anthropic) return headerOf(head, "x-api-key");
    constexpr std::string_view scheme = "Bearer ";
    const std::string authorization = headerOf(head, "authorization");
    return authorization.starts_with(scheme) ? authorization.substr(scheme.size()) : std::string();
}

Value errorValue(Standard standard, std::string_view type, std::string_view message) {
    Value value{{"error", {{"type", type}, {"message", message}}}};
    if (standard == Standard::anthropic) value["type"] = "error";
    return value;
}

std::string event(std::string_view type, Value value) {
    value["type"] = type;
    return "event: " + std::string(type) + "\ndata: " + json::encoded(value) + "\n\n";
}

std::string chunk(const Value& delta, const Value& finishReason) {
    const Value value{{"id", "practice"},
                      {"object", "chat.completion.chunk"},
                      {"model", modelName},
                      {"choices", {{{"index", 0}, {"delta", delta}, {"finish_reason", finishReason}}}}};
    return "data: " + json::encoded(value) + "\n\n";
}

}  // namespace

std::optional<PracticeRequest> parsePracticeRequest(std::string_view request) {
    const auto standard = standardOf(request);
    const std::size_t bodyAt = request.find("\r\n\r\n");
    if (!standard || bodyAt == std::string_view::npos) return std::nullopt;
    const auto body = json::parse(request.substr(bodyAt + 4));
    const Value* const messages = body ? json::member(*body, "messages") : nullptr;
    if (messages == nullptr || !messages->is_array()) return std::nullopt;

    PracticeRequest parsed{.standard = *standard,
                           .isStreamed = json::boolean(*body, "stream").value_or(false),
                           .key = keyOf(request.substr(0, bodyAt), *standard),
                           .messages = {}};
    if (const auto system = json::string(*body, "system"))
        parsed.messages.push_back({.role = "system", .content = *system});
    for (const Value& message : *messages) {
        parsed.messages.push_back({.role = json::string(message, "role").value_or(""),
                                   .content = json::string(message, "content").value_or("")});
    }
    return parsed;
}

namespace practice {

std::string wholeResponse(Standard standard, std::string_view answer) {
    if (standard == Standard::anthropic) {
        const Value value{{"id", "practice"},
                          {"type", "message"},
                          {"role", "assistant"},
                          {"model", modelName},
                          {"content", {{{"type", "text"}, {"text", answer}}}},
                          {"stop_reason", "end_turn"}};
        return httpResponse(json::encoded(value), "200 OK", jsonHeaders);
    }
    const Value message{{"role", "assistant"}, {"content", answer}};
    const Value value{{"id", "practice"},
                      {"object", "chat.completion"},
                      {"model", modelName},
                      {"choices", {{{"index", 0}, {"message", message}, {"finish_reason", "stop"}}}}};
    return httpResponse(json::encoded(value), "200 OK", jsonHeaders);
}

std::string refusal(Standard standard, std::string_view message) {
    return httpResponse(json::encoded(errorValue(standard, "practice_error", message)), "400 Bad Request", jsonHeaders);
}

std::string unauthorized(Standard standard, std::string_view key) {
    constexpr std::string_view status = "401 Unauthorized";
    if (standard == Standard::anthropic)
        return httpResponse(json::encoded(errorValue(standard, "authentication_error", "invalid x-api-key")), status,
                            jsonHeaders);
    const std::string message = "Incorrect API key provided: " + std::string(key.size(), '*');
    Value value = errorValue(standard, "invalid_request_error", message);
    value["error"]["code"] = "invalid_api_key";
    return httpResponse(json::encoded(value), status, jsonHeaders);
}

std::string notFound() {
    return httpResponse("The practice service answers POST .../chat/completions and .../messages only.\n",
                        "404 Not Found", "Content-Type: text/plain\r\nServer: ovrin-practice-service\r\n");
}

std::string streamHead(Standard standard) {
    const std::string head =
        "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nServer: ovrin-practice-service\r\n"
        "Connection: close\r\n\r\n";
    if (standard == Standard::openAICompatible) return head + chunk({{"role", "assistant"}}, nullptr);
    const Value message{{"id", "practice"},
                        {"type", "message"},
                        {"role", "assistant"},
                        {"model", modelName},
                        {"content", Value::array()}};
    const Value block{{"type", "text"}, {"text", ""}};
    return head + event("message_start", {{"message", message}}) +
           event("content_block_start", {{"index", 0}, {"content_block", block}});
}

std::string streamPiece(Standard standard, std::string_view piece) {
    if (standard == Standard::openAICompatible) return chunk({{"content", piece}}, nullptr);
    const Value delta{{"type", "text_delta"}, {"text", piece}};
    return event("content_block_delta", {{"index", 0}, {"delta", delta}});
}

std::string streamEnd(Standard standard) {
    if (standard == Standard::openAICompatible) return chunk(Value::object(), "stop") + "data: [DONE]\n\n";
    return event("content_block_stop", {{"index", 0}}) +
           event("message_delta", {{"delta", {{"stop_reason", "end_turn"}}}}) + event("message_stop", Value::object());
}

}  // namespace practice

}  // namespace ovrin
