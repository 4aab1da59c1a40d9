// Hashes of values made of several fields.
#pragma once

#include <cstddef>
#include <functional>

namespace ovrin {

// One hash from those of all values, sensitive to their order.
template <typename... Values>
std::size_t hashOf(const Values&... values) {
    std::size_t combined = 0;
    // The constant (the golden ratio's fraction) and the shifts spread the bits of equal or small hashes.
    ((combined ^= std::hash<Values>{}(values) + 0x9e3779b97f4a7c15U + (combined << 6U) + (combined >> 2U)), ...);
    return combined;
}

}  // namespace ovrin
