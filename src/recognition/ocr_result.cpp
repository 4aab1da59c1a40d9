#include "recognition/ocr_result.h"

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "base/hash_combine.h"
#include "base/json_date.h"

namespace ovrin {

namespace {

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
    const auto createdAt = decodedDate(json, "createdAt", form);
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
