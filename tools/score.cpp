#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>
#include <nlohmann/json.hpp>
#include "platform/linux/image_decoder.h"
#include "platform/linux/onnx_text_recognizer.h"
// dev version: score FOLDER OUTDIR [times]
int main(int count, char** arguments) {
    const std::filesystem::path folder = arguments[1], out = arguments[2];
    const int times = count > 3 ? std::stoi(arguments[3]) : 1;
    std::filesystem::create_directories(out);
    std::ifstream truthFile(folder / "truth.json");
    const ovrin::LinuxImageDecoder decoder;
    ovrin::OnnxTextRecognizer recognizer(ovrin::RecognitionFiles::ofThisProgram());
    recognizer.prepare();
    double total = 0;
    for (const auto& item : nlohmann::json::parse(truthFile)) {
        const std::string name = item.at("image");
        std::ifstream input(folder / name, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(input), {}};
        const auto image = decoder.decode(std::as_bytes(std::span(bytes)));
        double best = 1e9;
        for (int i = 0; i < times; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const auto lines = recognizer.perform({.usesLanguageCorrection = true, .automaticallyDetectsLanguage = true,
            .recognitionLanguages = {"zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"}}, image, {});
        const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        best = std::min(best, ms);
        if (i) continue;
        std::ofstream text(out / (std::filesystem::path(name).stem().string() + ".txt"));
        std::ofstream boxes(out / (std::filesystem::path(name).stem().string() + ".boxes"));
        for (const auto& line : lines) {
            text << line.candidates.front().string << '\n';
            const auto& b = line.boundingBox;
            boxes << line.candidates.front().confidence << " [" << int(b.x * image.width()) << ' ' << int((1 - b.y - b.height) * image.height()) << ' ' << int(b.width * image.width()) << ' ' << int(b.height * image.height()) << "] " << line.candidates.front().string << '\n';
        }
        }
        total += best;
        std::cerr << name << ' ' << best << '\n';
    }
    std::cout << "total " << total << " ms\n";
}
