// Whole recorded answers of both standards, cut into chunks at every place.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/deep_seek_error.h"
#include "model/event_decoding.h"
#include "model/line_reader.h"

namespace ovrin {
namespace {

using Strings = std::vector<std::string>;

constexpr const char* openAIRecording =
    ": OPENROUTER PROCESSING\r\n\r\n"
    "data: {\"id\":\"c-1\",\"object\":\"chat.completion.chunk\",\"choices\":[{\"index\":0,\"delta\":{\"role\":"
    "\"assistant\",\"content\":\"\",\"refusal\":null},\"logprobs\":null,\"finish_reason\":null}]}\n\n"
    "event: message\rid: 7\rretry: 10\r"
    "data:{\"choices\":[{\"index\":0,\"delta\":{\"content\":\"早上\"}}]}\r\r"
    "data: \t {\"choices\":[{\"delta\":{\"content\":\"\"}},{\"delta\":{\"content\":\" 好，\\n\"}}]} \t\n\n"
    "DATA: {\"choices\":[{\"delta\":{\"content\":\"shouted\"}}]}\n"
    "data: {\"choices\":[{\"delta\":{\"content\":\"cut off\n\n"
    "  data: {\"choices\":[{\"delta\":{\"content\":\"\\ud83c\\udf4c\"},\"finish_reason\":null}]}\u3000\n"
    "data: {\"choices\":[{\"delta\":{\"reasoning_content\":\"hm\",\"content\":null}}]}\n"
    "data: {\"choices\":[{\"delta\":{\"tool_calls\":[{\"index\":0,\"function\":{\"arguments\":\"{}\"}}]}}]}\n"
    "data: {\"choices\":[],\"usage\":{\"total_tokens\":9}}\n\n"
    "data: {\"choices\":[{\"delta\":{\"content\":\"bad \xE4\xBD byte\"}}]}\n"
    "data: {\"choices\":[{\"delta\":{},\"finish_reason\":\"stop\"}]}\n\n"
    "data: {\"choices\":[{\"delta\":{\"content\":\"!\"}}]}\n";
const Strings openAIPieces = {"早上", " 好，\n", "🍌", "bad \uFFFD byte", "!"};

constexpr const char* anthropicRecording =
    "event: message_start\r\n"
    "data: "
    "{\"type\":\"message_start\",\"message\":{\"id\":\"m\",\"content\":[],\"usage\":{\"input_tokens\":1}}}\r\n\r\n"
    "event: content_block_start\r\n"
    "data: "
    "{\"type\":\"content_block_start\",\"index\":0,\"content_block\":{\"type\":\"thinking\",\"thinking\":\"\"}}\r\n"
    "\r\nevent: ping\r\ndata: {\"type\": \"ping\"}\r\n\r\n"
    "data: "
    "{\"type\":\"content_block_delta\",\"index\":0,\"delta\":{\"type\":\"thinking_delta\",\"thinking\":\"hm\"}}\r\n\r\n"
    "data: "
    "{\"type\":\"content_block_delta\",\"index\":0,\"delta\":{\"type\":\"signature_delta\",\"signature\":\"x\"}}"
    "\r\n\r\n"
    "event: content_block_delta\r\n"
    "data: {\"type\":\"content_block_delta\",\"index\":1,\"delta\":{\"type\":\"text_delta\",\"text\":\"早上\"}}\r\n\r\n"
    "data: {\"type\":\"content_block_delta\",\"index\":1,\"delta\":{\"type\":\"text_delta\",\"text\":\"\"}}\r\n\r\n"
    "data: {\"delta\":{\"text\":\" 好 \",\"type\":\"text_delta\"},\"type\":\"content_block_delta\"}\r\n\r\n"
    "data: {\"type\":\"content_block_delta\",\"delta\":{\"type\":\"input_json_delta\",\"partial_json\":\"{\"}}\r\n\r\n"
    "data: {\"type\":\"content_block_start\",\"delta\":{\"type\":\"text_delta\",\"text\":\"not a delta\"}}\r\n\r\n"
    "data: {\"type\":\"error\"}\r\n\r\n"
    "data: "
    "{\"type\":\"message_delta\",\"delta\":{\"stop_reason\":\"end_turn\"},\"usage\":{\"output_tokens\":2}}\r\n\r\n";
const Strings anthropicPieces = {"早上", " 好 "};

// What the chunks deliver until the end mark or the last byte.
Strings decode(const Strings& chunks, DecodeEventLine decodeLine) {
    Strings pieces;
    LineReader lines;
    for (const std::string& chunk : chunks) {
        lines.append(chunk);
        while (const auto line = lines.next()) {
            if (decodeLine(*line, pieces) == StreamProgress::finished) return pieces;
        }
    }
    if (const auto last = lines.finish()) decodeLine(*last, pieces);
    return pieces;
}

Strings cutEvery(const std::string& body, std::size_t size) {
    Strings chunks;
    for (std::size_t i = 0; i < body.size(); i += size) chunks.push_back(body.substr(i, size));
    return chunks;
}

void expectPiecesAtEveryBoundary(const std::string& body, DecodeEventLine decodeLine, const Strings& pieces) {
    for (std::size_t size = 1; size < 20; ++size) EXPECT_EQ(decode(cutEvery(body, size), decodeLine), pieces) << size;
    for (std::size_t cut = 0; cut <= body.size(); ++cut) {
        EXPECT_EQ(decode({body.substr(0, cut), body.substr(cut)}, decodeLine), pieces) << cut;
    }
}

TEST(EventStream, GivesTheSamePiecesAtEveryChunkBoundary) {
    expectPiecesAtEveryBoundary(openAIRecording, decodeOpenAICompatibleEventLine, openAIPieces);
    expectPiecesAtEveryBoundary(anthropicRecording, decodeAnthropicEventLine, anthropicPieces);
}

TEST(EventStream, StopsAtTheEndMark) {
    for (const char* mark : {"data: [DONE]\n", "data:[DONE]\r\n", "data:  [DONE] \t\r", " data: [DONE]"}) {
        const std::string body = std::string(openAIRecording) + mark +
                                 "\ndata: {\"choices\":[{\"delta\":{\"content\":"
                                 "\"late\"}}]}\n";
        expectPiecesAtEveryBoundary(body, decodeOpenAICompatibleEventLine, openAIPieces);
    }
    const std::string body =
        std::string(anthropicRecording) +
        "event: message_stop\ndata: {\"type\":\"message_stop\"}\n\n"
        "data: {\"type\":\"content_block_delta\",\"delta\":{\"type\":\"text_delta\",\"text\":\"l\"}}\n";
    expectPiecesAtEveryBoundary(body, decodeAnthropicEventLine, anthropicPieces);
}

TEST(EventStream, DropsAByteOrderMarkAtTheStartOnly) {
    const std::string event =
        "\xEF\xBB\xBF"
        R"(data: {"choices":[{"delta":{"content":"a"}}]})"
        "\n";
    EXPECT_EQ(decode(cutEvery(event + event, 1), decodeOpenAICompatibleEventLine), Strings{"a"});
}

Strings linesOf(const Strings& chunks) {
    LineReader reader;
    Strings lines;
    for (const std::string& chunk : chunks) {
        reader.append(chunk);
        while (const auto line = reader.next()) lines.emplace_back(*line);
    }
    if (const auto line = reader.finish()) lines.emplace_back(*line);
    return lines;
}

TEST(LineReader, EndsLinesAtFeedsReturnsAndBoth) {
    const std::string body = "a\nb\rc\r\n\r\n\n\r\rd";
    const Strings lines = {"a", "b", "c", "", "", "", "", "d"};
    for (std::size_t size = 1; size <= body.size(); ++size) EXPECT_EQ(linesOf(cutEvery(body, size)), lines) << size;
    EXPECT_EQ(linesOf({}), Strings{});
    EXPECT_EQ(linesOf({"\r", "\n", "x"}), (Strings{"", "x"}));
}

TEST(LineReader, GivesALineAsSoonAsItsReturnArrives) {
    LineReader reader;
    reader.append("a\r");
    EXPECT_EQ(reader.next(), "a");
    EXPECT_EQ(reader.next(), std::nullopt);
    reader.append("\nb");
    EXPECT_EQ(reader.next(), std::nullopt);
    EXPECT_EQ(reader.finish(), "b");
}

TEST(LineReader, TakesHugeLinesAndRefusesEndlessOnes) {
    const std::string megabyte(1 << 20, 'x');
    LineReader reader;
    for (int i = 0; i < 16; ++i) {
        reader.append(megabyte);
        EXPECT_EQ(reader.next(), std::nullopt);
    }
    reader.append("\r\nnext\n");
    EXPECT_EQ(reader.next()->size(), LineReader::maximumLineLength);
    EXPECT_EQ(reader.next(), "next");

    EXPECT_THROW(
        {
            while (true) {
                reader.append(megabyte);
                while (reader.next()) {
                }
            }
        },
        DeepSeekError);
}

}  // namespace
}  // namespace ovrin
