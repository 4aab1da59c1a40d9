#include "model/deep_seek_types.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "model/json_reader.h"
#include "model/wire_decoding.h"

namespace ovrin::DeepSeek {

namespace {

bool readDelta(JSONReader& reader, ChatStreamChunk::Delta& delta) {
    delta = {};
    bool contentFits = true;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "content") {
            contentFits = readOptionalString(reader, delta.content);
        } else {
            reader.skip();
        }
    });
    return isObject && contentFits;
}

bool readStreamChoice(JSONReader& reader, ChatStreamChunk::Choice& choice) {
    bool deltaFits = false;
    bool finishReasonFits = true;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "delta") {
            deltaFits = readDelta(reader, choice.delta);
        } else if (key == "finish_reason") {
            finishReasonFits = readOptionalString(reader, choice.finishReason);
        } else {
            reader.skip();
        }
    });
    return isObject && deltaFits && finishReasonFits;
}

bool readMessage(JSONReader& reader, Message& message) {
    bool roleFits = false;
    bool contentFits = false;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "role") {
            roleFits = reader.readString(message.role);
        } else if (key == "content") {
            contentFits = reader.readString(message.content);
        } else {
            reader.skip();
        }
    });
    return isObject && roleFits && contentFits;
}

bool readResponseChoice(JSONReader& reader, ChatResponse::Choice& choice) {
    bool messageFits = false;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "message") {
            messageFits = readMessage(reader, choice.message);
        } else {
            reader.skip();
        }
    });
    return isObject && messageFits;
}

// Both bodies with choices, whose elements readChoice(reader, choice) reads.
template <typename Body, typename ReadChoice>
std::optional<Body> decodeChoices(std::string_view json, ReadChoice readChoice) {
    return decodeWhole<Body>(json, [&](JSONReader& reader, Body& body) {
        bool choicesFit = false;
        const bool isObject = reader.readObject([&](std::string_view key) {
            if (key == "choices") {
                choicesFit = readList(reader, body.choices, readChoice);
            } else {
                reader.skip();
            }
        });
        return isObject && choicesFit;
    });
}

bool readErrorPayload(JSONReader& reader, APIErrorBody::ErrorPayload& error) {
    error = {};
    bool messageFits = false;
    bool typeFits = true;
    bool codeFits = true;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "message") {
            messageFits = reader.readString(error.message);
        } else if (key == "type") {
            typeFits = readOptionalString(reader, error.type);
        } else if (key == "code") {
            codeFits = readOptionalString(reader, error.code);
        } else {
            reader.skip();
        }
    });
    return isObject && messageFits && typeFits && codeFits;
}

bool readAPIErrorBody(JSONReader& reader, APIErrorBody& body) {
    bool errorFits = false;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "error") {
            errorFits = readErrorPayload(reader, body.error);
        } else {
            reader.skip();
        }
    });
    return isObject && errorFits;
}

}  // namespace

std::string encode(const ChatRequest& request) {
    json::Value messages = json::Value::array();
    for (const Message& message : request.messages) {
        messages.push_back({{"role", message.role}, {"content", message.content}});
    }
    const json::Value body = {{"model", request.model},
                              {"messages", std::move(messages)},
                              {"temperature", request.temperature},
                              {"stream", request.stream}};
    return json::encoded(body);
}

std::optional<ChatStreamChunk> decodeChatStreamChunk(std::string_view json) {
    return decodeChoices<ChatStreamChunk>(json, readStreamChoice);
}

std::optional<ChatResponse> decodeChatResponse(std::string_view json) {
    return decodeChoices<ChatResponse>(json, readResponseChoice);
}

std::optional<APIErrorBody> decodeAPIErrorBody(std::string_view json) {
    return decodeWhole<APIErrorBody>(json, readAPIErrorBody);
}

}  // namespace ovrin::DeepSeek
