// Reads one piece of a line with the recognition network: Chinese, Japanese, and languages in Latin letters.
#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

#include "platform/linux/recognition/inference_session.h"
#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/reading.h"

namespace ovrin {

class LineRecognizer {
public:
    // Throws Error that names the file when it is no such network. The characters that it knows are named by itself.
    explicit LineRecognizer(const std::filesystem::path& modelFile);

    // What the network sees of a line at once, columns; its output takes 3 MiB for every 320 of them.
    static constexpr int longestPart = 1000;

    // Reads these columns of the piece; places are pixels from the piece's left edge. Of columns that the network would
    // see more than `longest` of, the parts between the widest gaps are read, in parallel where cores are idle.
    Reading read(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop,
                 int longest = longestPart) const;

private:
    Reading readPart(const LinePiece& piece, const ColumnRun& columns, const std::stop_token& stop) const;

    InferenceSession network_;
    std::vector<char32_t> characters_;  // by the network's class; 0 for the blank
};

}  // namespace ovrin
