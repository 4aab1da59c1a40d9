// A body of one protocol gives the same pieces, and the same end, in whatever chunks it arrives.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/text.h"
#include "check.h"
#include "cut_input.h"
#include "model/deep_seek_error.h"
#include "model/event_decoding.h"
#include "model/line_reader.h"

namespace ovrin::fuzz {

struct Outcome {
    std::vector<std::string> pieces;
    std::optional<DeepSeekError> error;
    bool isFinished = false;

    bool operator==(const Outcome&) const = default;
};

inline Outcome decodeChunks(const std::vector<std::string>& chunks, DecodeEventLine decodeLine) {
    Outcome outcome;
    LineReader lines;
    const auto decode = [&](std::string_view line) {
        outcome.isFinished = decodeLine(line, outcome.pieces) == StreamProgress::finished;
        return outcome.isFinished;
    };
    try {
        for (const std::string& chunk : chunks) {
            lines.append(chunk);
            while (const auto line = lines.next()) {
                if (decode(*line)) return outcome;
            }
        }
        if (const auto last = lines.finish()) decode(*last);
    } catch (const DeepSeekError& error) {
        outcome.error = error;
    }
    return outcome;
}

inline void checkEvents(const std::uint8_t* data, std::size_t size, DecodeEventLine decodeLine) {
    const CutInput input = cutInput(data, size);
    const Outcome whole = decodeChunks({std::string(input.body)}, decodeLine);
    OVRIN_CHECK(decodeChunks(input.chunks, decodeLine) == whole);
    for (const std::string& piece : whole.pieces) {
        OVRIN_CHECK(!piece.empty());
        OVRIN_CHECK(text::isValidUtf8(piece));
    }
}

}  // namespace ovrin::fuzz
