#include "recognition/ocr_paragraph.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "base/hash_combine.h"
#include "base/number_text.h"

namespace ovrin {

namespace {

// The double with the fewest digits that reads back to the same float, so that 0.9 is written 0.9.
double shortest(float value) {
    char text[32];
    const auto end = std::to_chars(std::begin(text), std::end(text), value).ptr;
    double result = 0;
    std::from_chars(std::begin(text), end, result);
    return result;
}

std::optional<std::pair<double, double>> pair(const json::Value& value) {
    if (!value.is_array() || value.size() != 2 || !value[0].is_number() || !value[1].is_number()) return std::nullopt;
    return std::pair{value[0].get<double>(), value[1].get<double>()};
}

std::optional<UnitRect> box(const json::Value* value) {
    if (value == nullptr || !value->is_array() || value->size() != 2) return std::nullopt;
    const auto origin = pair((*value)[0]);
    const auto size = pair((*value)[1]);
    if (!origin || !size) return std::nullopt;
    return UnitRect{origin->first, origin->second, size->first, size->second};
}

template <typename T>
T required(std::optional<T> value, const char* key) {
    if (!value) throw Error(std::string("A recognised paragraph has no usable \"") + key + "\".");
    return *std::move(value);
}

}  // namespace

std::string OCRParagraph::id() const {
    return shortestDecimalText(normalizedBoundingBox.x) + "-" + shortestDecimalText(normalizedBoundingBox.y) + "-" +
           text;
}

bool OCRParagraph::operator==(const OCRParagraph& other) const {
    return text == other.text && confidence == other.confidence &&
           normalizedBoundingBox.standardized() == other.normalizedBoundingBox.standardized();
}

nlohmann::ordered_json OCRParagraph::toJson() const {
    const UnitRect& rect = normalizedBoundingBox;
    return {{"text", text},
            {"confidence", shortest(confidence)},
            {"normalizedBoundingBox", {{rect.x, rect.y}, {rect.width, rect.height}}}};
}

OCRParagraph OCRParagraph::fromJson(const json::Value& json) {
    const double confidence = required(json::number(json, "confidence"), "confidence");
    if (std::abs(confidence) > std::numeric_limits<float>::max()) required(std::optional<float>(), "confidence");
    return {
        .text = required(json::string(json, "text"), "text"),
        .confidence = static_cast<float>(confidence),
        .normalizedBoundingBox = required(box(json::member(json, "normalizedBoundingBox")), "normalizedBoundingBox")};
}

}  // namespace ovrin

std::size_t std::hash<ovrin::OCRParagraph>::operator()(const ovrin::OCRParagraph& paragraph) const noexcept {
    const ovrin::UnitRect box = paragraph.normalizedBoundingBox.standardized();
    return ovrin::hashOf(paragraph.text, paragraph.confidence, box.x, box.y, box.width, box.height);
}
