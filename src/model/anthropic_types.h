// The JSON bodies and stream events of the Anthropic messages standard.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ovrin::Anthropic {

// Of the protocol: the header anthropic-version.
inline constexpr std::string_view version = "2023-06-01";

struct Message {
    std::string role;  // "user" or "assistant"
    std::string content;

    bool operator==(const Message&) const = default;
};

struct Request {
    std::string model;
    std::int64_t maxTokens = 0;
    std::optional<std::string> system;  // left out of the body when absent
    std::vector<Message> messages;
    std::optional<double> temperature;  // left out of the body when absent
    bool stream = false;
};

struct ErrorPayload {
    std::optional<std::string> type;
    std::string message;
};

struct StreamEvent {
    struct Delta {
        std::string type;
        std::optional<std::string> text;
    };
    std::string type;
    std::optional<Delta> delta;
    std::optional<ErrorPayload> error;
};

struct APIErrorBody {
    ErrorPayload error;
};

struct Response {
    struct ContentBlock {
        std::string type;
        std::optional<std::string> text;
    };
    std::vector<ContentBlock> content;
};

// The compact JSON of a request body.
std::string encode(const Request& request);

// None when the text is not JSON or lacks what the record requires.
std::optional<StreamEvent> decodeStreamEvent(std::string_view json);
std::optional<APIErrorBody> decodeAPIErrorBody(std::string_view json);
std::optional<Response> decodeResponse(std::string_view json);

}  // namespace ovrin::Anthropic
