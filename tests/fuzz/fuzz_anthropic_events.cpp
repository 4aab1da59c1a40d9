// Streamed answers of the Anthropic standard.
#include "event_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ovrin::fuzz::checkEvents(data, size, ovrin::decodeAnthropicEventLine);
    return 0;
}
