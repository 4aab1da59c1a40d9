#include "base/number_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace ovrin {

std::string shortestDecimalText(double value) {
    constexpr double smallestFixed = 0.0001;
    constexpr double largestFixed = 18014398509481984.0;  // 2 to the 54th
    const double magnitude = std::abs(value);
    const bool isFixed = value == 0 || (magnitude >= smallestFixed && magnitude <= largestFixed);
    std::array<char, 64> buffer{};
    const auto format = isFixed ? std::chars_format::fixed : std::chars_format::scientific;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format);
    std::string text(buffer.data(), end.ptr);
    if (isFixed && text.find('.') == std::string::npos) text += ".0";
    return text;
}

std::string byteCountText(std::uint64_t count) {
    constexpr std::uint64_t step = 1000;
    constexpr std::array<const char*, 3> units{" KB", " MB", " GB"};
    if (count < step) return std::to_string(count) + " B";
    std::uint64_t unit = step;
    std::size_t index = 0;
    while (index + 1 < units.size() && count / unit >= step) {
        unit *= step;
        ++index;
    }
    const std::uint64_t tenths = count / (unit / 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + units[index];
}

}  // namespace ovrin
