// Streamed answers of the OpenAI-compatible standard.
#include "event_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ovrin::fuzz::checkEvents(data, size, ovrin::decodeOpenAICompatibleEventLine);
    return 0;
}
