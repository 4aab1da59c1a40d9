#include "model/event_decoding.h"

#include <optional>
#include <utility>

#include "base/text.h"
#include "model/anthropic_types.h"
#include "model/deep_seek_error.h"
#include "model/deep_seek_types.h"

namespace ovrin {

namespace {

std::optional<std::string_view> payloadOf(std::string_view line) {
    constexpr std::string_view field = "data:";
    const bool startsPlainly = !line.empty() && line.front() > ' ';
    if (line.empty() || (startsPlainly && !line.starts_with(field))) return std::nullopt;
    const std::string_view content = text::trimmed(line);
    if (!content.starts_with(field)) return std::nullopt;
    return text::trimmedBlanks(content.substr(field.size()));
}

void deliver(std::optional<std::string>& text, std::vector<std::string>& pieces) {
    if (text && !text->empty()) pieces.push_back(std::move(*text));
}

}  // namespace

StreamProgress decodeOpenAICompatibleEventLine(std::string_view line, std::vector<std::string>& pieces) {
    const auto payload = payloadOf(line);
    if (!payload) return StreamProgress::more;
    if (*payload == "[DONE]") return StreamProgress::finished;
    auto chunk = DeepSeek::decodeChatStreamChunk(*payload);
    if (!chunk) return StreamProgress::more;
    bool isThinking = false;
    for (DeepSeek::ChatStreamChunk::Choice& choice : chunk->choices) {
        isThinking |= choice.delta.isThinking;
        deliver(choice.delta.content, pieces);
    }
    return isThinking && pieces.empty() ? StreamProgress::thinking : StreamProgress::more;
}

StreamProgress decodeAnthropicEventLine(std::string_view line, std::vector<std::string>& pieces) {
    const auto payload = payloadOf(line);
    if (!payload) return StreamProgress::more;
    auto event = Anthropic::decodeStreamEvent(*payload);
    if (!event) return StreamProgress::more;
    if (event->type == "error" && event->error) {
        throw DeepSeekError::apiError(std::move(event->error->message), std::move(event->error->type));
    }
    if (event->type == "content_block_delta" && event->delta) {
        if (event->delta->type == "thinking_delta") return StreamProgress::thinking;
        if (event->delta->type == "text_delta") deliver(event->delta->text, pieces);
    }
    return event->type == "message_stop" ? StreamProgress::finished : StreamProgress::more;
}

}  // namespace ovrin
