// A history file is refused or read, and what was read is read again the same after it was written.
#include "check.h"
#include "storage/history_format.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto records = ovrin::decodedHistory(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!records) return 0;
    const auto again = ovrin::decodedHistory(ovrin::encodedHistory(*records));
    OVRIN_CHECK(again && again->size() == records->size());
    OVRIN_CHECK(ovrin::encodedHistory(*again) == ovrin::encodedHistory(*records));
    return 0;
}
