#include "measuring.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>
#include <thread>
#include <utility>

#include "base/error.h"
#include "base/image.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"

namespace ovrin {

double millisecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values.at(values.size() / 2);
}

double medianOf(int runs, const std::function<double()>& measure) {
    std::vector<double> values(static_cast<std::size_t>(runs));
    for (double& value : values) value = measure();
    return median(std::move(values));
}

double recognitionTime(OnnxTextRecognizer& recognizer, const Image& picture) {
    const auto begin = std::chrono::steady_clock::now();
    recognizer.perform({.usesLanguageCorrection = true,
                        .automaticallyDetectsLanguage = true,
                        .recognitionLanguages = {"zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"}},
                       picture, {});
    return millisecondsSince(begin);
}

void report(const char* what, double value, const char* unit, double limit) {
    std::printf("%-58s %8.1f %-3s  limit %6.1f %s\n", what, value, unit, limit, value <= limit ? "" : "  MISSED");
    std::fflush(stdout);
}

void spinUntil(const char* what, const std::function<bool()>& condition, std::chrono::milliseconds pause) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) throw Error(std::string("waited in vain for ") + what);
        std::this_thread::sleep_for(pause);
    }
}

}  // namespace ovrin
