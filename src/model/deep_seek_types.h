// The chat message that every caller of a model builds, and the JSON bodies of the OpenAI-compatible standard.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ovrin::DeepSeek {

struct Message {
    std::string role;     // "system", "user" or "assistant"
    std::string content;  // plain text, UTF-8

    bool operator==(const Message&) const = default;
};

struct ChatRequest {
    std::string model;
    std::vector<Message> messages;
    std::optional<double> temperature;  // left out of the body when absent
    bool stream = false;
};

struct ChatStreamChunk {
    struct Delta {
        std::optional<std::string> content;
        bool isThinking = false;  // some services tell of thoughts, under keys of their own
    };
    struct Choice {
        Delta delta;
        std::optional<std::string> finishReason;
    };
    std::vector<Choice> choices;
};

struct ChatResponse {
    struct Choice {
        Message message;
    };
    std::vector<Choice> choices;
};

struct APIErrorBody {
    struct ErrorPayload {
        std::string message;
        std::optional<std::string> type;
        std::optional<std::string> code;
    };
    ErrorPayload error;
};

// The compact JSON of a request body.
std::string encode(const ChatRequest& request);

// None when the text is not JSON or lacks what the record requires.
std::optional<ChatStreamChunk> decodeChatStreamChunk(std::string_view json);
std::optional<ChatResponse> decodeChatResponse(std::string_view json);
std::optional<APIErrorBody> decodeAPIErrorBody(std::string_view json);

}  // namespace ovrin::DeepSeek
