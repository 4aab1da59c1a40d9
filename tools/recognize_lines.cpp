// A developer's view of the recogniser: each line of each picture with its box and confidence, and how long it took.
//   recognize_lines [--text] [--times N] PICTURE...
#include <chrono>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/linux/image_decoder.h"
#include "platform/linux/onnx_text_recognizer.h"

namespace {

std::vector<std::byte> readFile(const std::string& path) {
    std::ifstream input(path, std::ios::binary);
    const std::vector<char> characters{std::istreambuf_iterator<char>(input), {}};
    const auto* first = reinterpret_cast<const std::byte*>(characters.data());
    return {first, first + characters.size()};
}

}  // namespace

int main(int count, char** arguments) {
    bool textOnly = false;
    int times = 1;
    std::vector<std::string> paths;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--text") {
            textOnly = true;
        } else if (argument == "--times" && i + 1 < count) {
            times = std::stoi(arguments[++i]);
        } else {
            paths.push_back(argument);
        }
    }
    try {
        const ovrin::LinuxImageDecoder decoder;
        ovrin::OnnxTextRecognizer recognizer(ovrin::RecognitionFiles::ofThisProgram());
        const ovrin::TextRecognitionRequest request{
            .usesLanguageCorrection = true,
            .automaticallyDetectsLanguage = true,
            .recognitionLanguages = {"zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"}};
        for (const auto& path : paths) {
            const ovrin::Image image = decoder.decode(readFile(path));
            for (int i = 0; i < times; ++i) {
                const auto start = std::chrono::steady_clock::now();
                const auto observations = recognizer.perform(request, image, {});
                const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
                if (!textOnly) std::cout << path << ": " << elapsed.count() << " ms\n";
                if (i + 1 < times) continue;
                for (const auto& observation : observations) {
                    const auto& best = observation.candidates.front();
                    if (!textOnly) {
                        const auto& box = observation.boundingBox;
                        std::cout << best.confidence << " [" << box.x * image.width() << ' '
                                  << (1 - box.y - box.height) * image.height() << ' ' << box.width * image.width()
                                  << ' ' << box.height * image.height() << "] ";
                    }
                    std::cout << best.string << '\n';
                }
            }
        }
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
