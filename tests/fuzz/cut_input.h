// A fuzzer's bytes as chunk sizes and content: the first byte seeds the sizes, the rest is the body.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ovrin::fuzz {

struct CutInput {
    std::string_view body;
    std::vector<std::string> chunks;  // the body in pieces
};

inline CutInput cutInput(const std::uint8_t* data, std::size_t size) {
    CutInput input;
    if (size == 0) return input;
    std::uint32_t state = data[0] + 1U;
    input.body = std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1);
    for (std::size_t at = 0; at < input.body.size();) {
        state = state * 1664525U + 1013904223U;
        const std::size_t length = 1 + (state >> 24U) % (1U + data[0] % 32U);
        input.chunks.emplace_back(input.body.substr(at, length));
        at += length;
    }
    return input;
}

}  // namespace ovrin::fuzz
