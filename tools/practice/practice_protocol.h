// The two wire protocols of model services as a server speaks them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "practice/practice_answer.h"

namespace ovrin {

struct PracticeRequest {
    enum class Standard : std::uint8_t { openAICompatible, anthropic } standard = Standard::openAICompatible;
    bool isStreamed = false;
    std::string key{};                      // as the protocol hands it over; empty when it is not there
    std::vector<PracticeMessage> messages;  // the system's first
};

// A whole HTTP request; none when it is neither protocol's.
std::optional<PracticeRequest> parsePracticeRequest(std::string_view request);

namespace practice {

using Standard = PracticeRequest::Standard;

// Complete HTTP responses.
std::string wholeResponse(Standard standard, std::string_view answer);
std::string refusal(Standard standard, std::string_view message);
std::string unauthorized(Standard standard, std::string_view key);  // repeats the key, each character masked
std::string notFound();

// A streamed response: its head, then an event for each piece, then its end.
std::string streamHead(Standard standard);
std::string streamPiece(Standard standard, std::string_view piece);
std::string streamEnd(Standard standard);

}  // namespace practice

}  // namespace ovrin
