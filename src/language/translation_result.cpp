#include "language/translation_result.h"

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "base/hash_combine.h"

namespace ovrin {

namespace {

template <typename Value>
Value required(std::optional<Value> value, const char* key) {
    if (!value) throw Error(std::string("A translation result has no usable \"") + key + "\".");
    return *std::move(value);
}

std::optional<std::string> decodedSourceLanguage(const json::Value& json) {
    const json::Value* language = json::member(json, "sourceLanguage");
    if (language == nullptr || language->is_null()) return std::nullopt;
    return required(json::string(json, "sourceLanguage"), "sourceLanguage");
}

}  // namespace

json::Value TranslationResult::toJson(DateForm form) const {
    json::Value json = {{"id", id.text()},
                        {"sourceText", sourceText},
                        {"translatedText", translatedText},
                        {"targetLanguage", targetLanguage},
                        {"createdAt", encodedDate(createdAt, form)}};
    if (sourceLanguage) json["sourceLanguage"] = *sourceLanguage;
    return json;
}

TranslationResult TranslationResult::fromJson(const json::Value& json, DateForm form) {
    const auto text = [&](const char* key) { return required(json::string(json, key), key); };
    return {.id = required(Uuid::parse(text("id")), "id"),
            .sourceText = text("sourceText"),
            .translatedText = text("translatedText"),
            .sourceLanguage = decodedSourceLanguage(json),
            .targetLanguage = text("targetLanguage"),
            .createdAt = required(decodedDate(json, "createdAt", form), "createdAt")};
}

}  // namespace ovrin

std::size_t std::hash<ovrin::TranslationResult>::operator()(const ovrin::TranslationResult& result) const noexcept {
    return ovrin::hashOf(result.id, result.sourceText, result.translatedText, result.sourceLanguage,
                         result.targetLanguage, result.createdAt.time_since_epoch().count());
}
