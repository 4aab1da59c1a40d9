// Streamed answers of 10 000 small deltas: bytes to pieces, beside the bare JSON parse of the same payloads.
//
// With OVRIN_RECORDINGS set, the bytes are also left in that folder (openai.txt, anthropic.txt), for another program
// to be measured on.
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include "model/event_decoding.h"
#include "model/line_reader.h"

namespace ovrin {
namespace {

using Json = nlohmann::ordered_json;

constexpr int deltaCount = 10'000;
constexpr std::size_t chunkSize = 16384;  // what the transport hands over at most

std::string deltaText(int index) {
    constexpr std::array texts{"你好", " world", "，", "the ", "translation"};
    return texts.at(static_cast<std::size_t>(index) % texts.size());
}

std::string openAIRecording() {
    std::string body;
    for (int i = 0; i < deltaCount; ++i) {
        const Json chunk = {{"id", "chatcmpl-AbCdEf0123456789"},
                            {"object", "chat.completion.chunk"},
                            {"created", 1764000000},
                            {"model", "some-model"},
                            {"service_tier", "default"},
                            {"system_fingerprint", "fp_44709d6fcb"},
                            {"choices",
                             {{{"index", 0},
                               {"delta", {{"content", deltaText(i)}}},
                               {"logprobs", nullptr},
                               {"finish_reason", nullptr}}}}};
        body += "data: " + chunk.dump() + "\n\n";
    }
    return body + "data: [DONE]\n\n";
}

std::string anthropicRecording() {
    const auto event = [](const Json& json) {
        return "event: " + json["type"].get<std::string>() + "\ndata: " + json.dump() + "\n\n";
    };
    std::string body =
        event({{"type", "message_start"},
               {"message",
                {{"id", "msg_1"},
                 {"type", "message"},
                 {"role", "assistant"},
                 {"content", Json::array()},
                 {"model", "some-model"},
                 {"stop_reason", nullptr},
                 {"usage", {{"input_tokens", 1}, {"output_tokens", 1}}}}}}) +
        event({{"type", "content_block_start"}, {"index", 0}, {"content_block", {{"type", "text"}, {"text", ""}}}});
    for (int i = 0; i < deltaCount; ++i) {
        body += event({{"type", "content_block_delta"},
                       {"index", 0},
                       {"delta", {{"type", "text_delta"}, {"text", deltaText(i)}}}});
    }
    return body + event({{"type", "content_block_stop"}, {"index", 0}}) + event({{"type", "message_stop"}});
}

// Written once, when the program starts.
const std::string& recording(const char* name, std::string (*make)()) {
    static std::vector<std::pair<std::string, std::string>> made;
    for (const auto& [known, body] : made) {
        if (known == name) return body;
    }
    made.reserve(2);
    made.emplace_back(name, make());
    if (const char* folder = std::getenv("OVRIN_RECORDINGS")) {  // NOLINT(concurrency-mt-unsafe)
        std::ofstream(std::filesystem::path(folder) / (std::string(name) + ".txt"), std::ios::binary)
            << made.back().second;
    }
    return made.back().second;
}

const std::string& openAIBody() {
    return recording("openai", openAIRecording);
}

const std::string& anthropicBody() {
    return recording("anthropic", anthropicRecording);
}

void toPieces(benchmark::State& state, const std::string& body, DecodeEventLine decodeLine) {
    std::size_t count = 0;
    for (auto _ : state) {
        count = 0;
        std::vector<std::string> pieces;
        LineReader lines;
        for (std::size_t at = 0; at < body.size(); at += chunkSize) {
            lines.append(body.substr(at, chunkSize));
            while (const auto line = lines.next()) {
                pieces.clear();
                decodeLine(*line, pieces);
                count += pieces.size();
            }
        }
    }
    if (count != deltaCount) state.SkipWithError("pieces are missing");
}

void bareJSON(benchmark::State& state, const std::string& body) {
    std::vector<std::string> payloads;
    LineReader lines;
    lines.append(body);
    while (const auto line = lines.next()) {
        if (line->starts_with("data: {")) payloads.emplace_back(line->substr(6));
    }
    for (auto _ : state) {
        for (const std::string& payload : payloads) benchmark::DoNotOptimize(nlohmann::json::parse(payload));
    }
}

void openAIPieces(benchmark::State& state) {
    toPieces(state, openAIBody(), decodeOpenAICompatibleEventLine);
}

void anthropicPieces(benchmark::State& state) {
    toPieces(state, anthropicBody(), decodeAnthropicEventLine);
}

void openAIBareJSON(benchmark::State& state) {
    bareJSON(state, openAIBody());
}

void anthropicBareJSON(benchmark::State& state) {
    bareJSON(state, anthropicBody());
}

BENCHMARK(openAIPieces)->Unit(benchmark::kMillisecond);
BENCHMARK(openAIBareJSON)->Unit(benchmark::kMillisecond);
BENCHMARK(anthropicPieces)->Unit(benchmark::kMillisecond);
BENCHMARK(anthropicBareJSON)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ovrin
