#include "model/anthropic_types.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "model/json_reader.h"
#include "model/wire_decoding.h"

namespace ovrin::Anthropic {

namespace {

// A delta and a content block have the same fields.
template <typename TypedText>
bool readTypedText(JSONReader& reader, TypedText& value) {
    bool typeFits = false;
    bool textFits = true;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "type") {
            typeFits = reader.readString(value.type);
        } else if (key == "text") {
            textFits = readOptionalString(reader, value.text);
        } else {
            reader.skip();
        }
    });
    return isObject && typeFits && textFits;
}

bool readErrorPayload(JSONReader& reader, ErrorPayload& error) {
    error = {};
    bool typeFits = true;
    bool messageFits = false;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "type") {
            typeFits = readOptionalString(reader, error.type);
        } else if (key == "message") {
            messageFits = reader.readString(error.message);
        } else {
            reader.skip();
        }
    });
    return isObject && typeFits && messageFits;
}

bool readStreamEvent(JSONReader& reader, StreamEvent& event) {
    bool typeFits = false;
    bool deltaFits = true;
    bool errorFits = true;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "type") {
            typeFits = reader.readString(event.type);
        } else if (key == "delta") {
            deltaFits = readOptional(reader, event.delta, readTypedText<StreamEvent::Delta>);
        } else if (key == "error") {
            errorFits = readOptional(reader, event.error, readErrorPayload);
        } else {
            reader.skip();
        }
    });
    return isObject && typeFits && deltaFits && errorFits;
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

bool readResponse(JSONReader& reader, Response& response) {
    bool contentFits = false;
    const bool isObject = reader.readObject([&](std::string_view key) {
        if (key == "content") {
            contentFits = readList(reader, response.content, readTypedText<Response::ContentBlock>);
        } else {
            reader.skip();
        }
    });
    return isObject && contentFits;
}

}  // namespace

std::string encode(const Request& request) {
    json::Value body = {{"model", request.model}, {"max_tokens", request.maxTokens}};
    if (request.system) body["system"] = *request.system;
    json::Value messages = json::Value::array();
    for (const Message& message : request.messages) {
        messages.push_back({{"role", message.role}, {"content", message.content}});
    }
    body["messages"] = std::move(messages);
    body["temperature"] = request.temperature;
    body["stream"] = request.stream;
    return json::encoded(body);
}

std::optional<StreamEvent> decodeStreamEvent(std::string_view json) {
    return decodeWhole<StreamEvent>(json, readStreamEvent);
}

std::optional<APIErrorBody> decodeAPIErrorBody(std::string_view json) {
    return decodeWhole<APIErrorBody>(json, readAPIErrorBody);
}

std::optional<Response> decodeResponse(std::string_view json) {
    return decodeWhole<Response>(json, readResponse);
}

}  // namespace ovrin::Anthropic
