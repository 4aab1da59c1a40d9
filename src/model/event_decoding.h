// What the lines of a streamed answer mean, in either standard: pieces of text, the end, or a failure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ovrin {

// thinking: an event that delivers nothing but says that the model thinks.
enum class StreamProgress { more, thinking, finished };

// Decodes one line of the body (any bytes, without its line end) and appends the pieces of text it delivers, none of
// them empty. Lines that carry no event and payloads that do not decode deliver nothing.
using DecodeEventLine = StreamProgress (*)(std::string_view line, std::vector<std::string>& pieces);

StreamProgress decodeOpenAICompatibleEventLine(std::string_view line, std::vector<std::string>& pieces);

// Throws DeepSeekError apiError for an "error" event.
StreamProgress decodeAnthropicEventLine(std::string_view line, std::vector<std::string>& pieces);

}  // namespace ovrin
