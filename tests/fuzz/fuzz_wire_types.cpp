// Every record decodes exactly when a full JSON parser, followed by the rules of the record, says so.
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "base/text.h"
#include "check.h"
#include "model/anthropic_types.h"
#include "model/deep_seek_types.h"

namespace {

using Json = nlohmann::json;
using namespace ovrin;

// The reference parser differs by design on a byte order mark (which it skips), a NUL (which ends its input) and, see
// below, numbers too large for a double (which fit any field that is not read).
bool isComparable(std::string_view text) {
    int depth = 0;
    for (const char character : text) {
        if (character == '[' || character == '{') ++depth;
    }
    return depth < 512 && !text.starts_with("\xEF\xBB\xBF") && text.find('\0') == std::string_view::npos;
}

std::optional<Json> parsed(const std::string& text, bool& isOverflow) {
    try {
        return Json::parse(text);
    } catch (const Json::out_of_range&) {
        isOverflow = true;
    } catch (const Json::parse_error&) {
    }
    return std::nullopt;
}

const Json* member(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

bool isText(const Json* value) {
    return value != nullptr && value->is_string();
}

bool isOptionalText(const Json* value) {
    return value == nullptr || value->is_null() || value->is_string();
}

bool isChunk(const Json& json) {
    if (!json.is_object() || !json.contains("choices") || !json["choices"].is_array()) return false;
    for (const Json& choice : json["choices"]) {
        if (!choice.is_object() || !isOptionalText(member(choice, "finish_reason"))) return false;
        const Json* delta = member(choice, "delta");
        if (delta == nullptr || !delta->is_object() || !isOptionalText(member(*delta, "content"))) return false;
    }
    return true;
}

bool isErrorPayload(const Json& error) {
    return error.is_object() && isText(member(error, "message")) && isOptionalText(member(error, "type"));
}

bool isStreamEvent(const Json& json) {
    if (!json.is_object() || !isText(member(json, "type"))) return false;
    const Json* delta = member(json, "delta");
    if (delta != nullptr && !delta->is_null() &&
        (!delta->is_object() || !isText(member(*delta, "type")) || !isOptionalText(member(*delta, "text")))) {
        return false;
    }
    const Json* error = member(json, "error");
    return error == nullptr || error->is_null() || isErrorPayload(*error);
}

void checkChunk(const Json& json, const DeepSeek::ChatStreamChunk& chunk) {
    const Json& choices = json["choices"];
    OVRIN_CHECK(choices.size() == chunk.choices.size());
    for (std::size_t i = 0; i < choices.size(); ++i) {
        const Json* content = member(choices[i]["delta"], "content");
        const bool hasContent = content != nullptr && content->is_string();
        OVRIN_CHECK(chunk.choices[i].delta.content.has_value() == hasContent);
        if (hasContent) OVRIN_CHECK(*chunk.choices[i].delta.content == content->get<std::string>());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto chunk = DeepSeek::decodeChatStreamChunk(text);
    const auto event = Anthropic::decodeStreamEvent(text);
    const auto openAIError = DeepSeek::decodeAPIErrorBody(text);
    const auto anthropicError = Anthropic::decodeAPIErrorBody(text);
    DeepSeek::decodeChatResponse(text);
    Anthropic::decodeResponse(text);

    if (!isComparable(text)) return 0;
    bool isOverflow = false;
    const auto json = parsed(text::repairedUtf8(std::string(text)), isOverflow);
    if (isOverflow) return 0;
    OVRIN_CHECK(chunk.has_value() == (json && isChunk(*json)));
    if (chunk) checkChunk(*json, *chunk);
    OVRIN_CHECK(event.has_value() == (json && isStreamEvent(*json)));
    if (event) OVRIN_CHECK(event->type == (*json)["type"].get<std::string>());
    const bool isError = json && json->is_object() && json->contains("error") && isErrorPayload((*json)["error"]);
    OVRIN_CHECK(anthropicError.has_value() == isError);
    OVRIN_CHECK(openAIError.has_value() == (isError && isOptionalText(member((*json)["error"], "code"))));
    return 0;
}
