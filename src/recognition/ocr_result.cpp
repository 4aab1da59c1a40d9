#include "recognition/ocr_result.h"

#include <chrono>
#include <cmath>

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "base/hash_combine.h"

namespace ovrin {

namespace {

using Seconds = std::chrono::duration<double>;
using std::chrono::microseconds;

constexpr Timestamp referenceDate = std::chrono::sys_days{std::chrono::year{2001} / 1 / 1};

// Beyond this a double of seconds no longer fits a Timestamp (some 290 years from 1970).
constexpr double largestDistance = 8e9;

Timestamp dateFromSeconds(double seconds) {
    return referenceDate + std::chrono::round<microseconds>(Seconds(seconds));
}

nlohmann::ordered_json encodedDate(Timestamp moment, OCRResult::DateForm form) {
    if (form == OCRResult::DateForm::iso8601) return iso8601Text(moment);
    return Seconds(moment - referenceDate).count();
}

std::optional<Timestamp> decodedDate(const json::Value& json, OCRResult::DateForm form) {
    if (form == OCRResult::DateForm::iso8601) {
        const auto text = json::string(json, "createdAt");
        return text ? parseIso8601(*text) : std::nullopt;
    }
    const auto seconds = json::number(json, "createdAt");
    if (!seconds || !(std::abs(*seconds) <= largestDistance)) return std::nullopt;
    return dateFromSeconds(*seconds);
}

[[noreturn]] void failFor(const char* key) {
    throw Error(std::string("A recognition result has no usable \"") + key + "\".");
}

std::optional<std::string> decodedLanguage(const json::Value& json) {
    const json::Value* language = json::member(json, "detectedLanguage");
    if (language == nullptr || language->is_null()) return std::nullopt;
    if (!language->is_string()) failFor("detectedLanguage");
    return language->get<std::string>();
}

}  // namespace

std::string OCRResult::fullText() const {
    std::string joined;
    for (const OCRParagraph& paragraph : paragraphs) {
        if (&paragraph != &paragraphs.front()) joined += '\n';
        joined += paragraph.text;
    }
    return joined;
}

nlohmann::ordered_json OCRResult::toJson(DateForm form) const {
    nlohmann::ordered_json json;
    auto& list = json["paragraphs"] = nlohmann::ordered_json::array();
    for (const OCRParagraph& paragraph : paragraphs) list.push_back(paragraph.toJson());
    if (detectedLanguage) json["detectedLanguage"] = *detectedLanguage;
    json["createdAt"] = encodedDate(createdAt, form);
    return json;
}

OCRResult OCRResult::fromJson(const json::Value& json, DateForm form) {
    OCRResult result;
    const json::Value* list = json::member(json, "paragraphs");
    if (list == nullptr || !list->is_array()) failFor("paragraphs");
    for (const json::Value& paragraph : *list) result.paragraphs.push_back(OCRParagraph::fromJson(paragraph));
    result.detectedLanguage = decodedLanguage(json);
    const auto createdAt = decodedDate(json, form);
    if (!createdAt) failFor("createdAt");
    result.createdAt = *createdAt;
    return result;
}

}  // namespace ovrin

std::size_t std::hash<ovrin::OCRResult>::operator()(const ovrin::OCRResult& result) const noexcept {
    std::size_t hash = ovrin::hashOf(result.detectedLanguage, result.createdAt.time_since_epoch().count());
    for (const ovrin::OCRParagraph& paragraph : result.paragraphs) hash = ovrin::hashOf(hash, paragraph);
    return hash;
}
