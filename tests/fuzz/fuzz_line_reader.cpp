// Lines come out as a reader that sees the whole body at once would cut them.
#include <string>
#include <vector>

#include "check.h"
#include "cut_input.h"
#include "model/line_reader.h"

namespace {

std::vector<std::string> expectedLines(std::string_view body) {
    std::vector<std::string> lines;
    std::string line;
    for (std::size_t i = 0; i < body.size(); ++i) {
        if (body[i] != '\n' && body[i] != '\r') {
            line += body[i];
            continue;
        }
        if (body[i] == '\r' && i + 1 < body.size() && body[i + 1] == '\n') ++i;
        lines.push_back(line);
        line.clear();
    }
    if (!line.empty()) lines.push_back(line);
    if (!lines.empty() && lines.front().starts_with("\xEF\xBB\xBF")) lines.front().erase(0, 3);
    return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = ovrin::fuzz::cutInput(data, size);
    std::vector<std::string> lines;
    ovrin::LineReader reader;
    for (const std::string& chunk : input.chunks) {
        reader.append(chunk);
        while (const auto line = reader.next()) lines.emplace_back(*line);
    }
    if (const auto line = reader.finish()) lines.emplace_back(*line);
    OVRIN_CHECK(lines == expectedLines(input.body));
    return 0;
}
