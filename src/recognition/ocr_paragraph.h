// One recognised block of text, usually one visual line: what it says, how sure the reading is, where it lies.
// A plain value with equality, hashing and a serialised form with fixed keys.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "base/geometry.h"
#include "base/json.h"

namespace ovrin {

struct OCRParagraph {
    std::string text;      // UTF-8, as recognised: not trimmed
    float confidence = 0;  // 0..1
    UnitRect normalizedBoundingBox;

    // Tells paragraphs apart in lists: the origin's x and y as shortest decimals and the text, joined by "-".
    std::string id() const;

    // Boxes compare as the areas they cover: a negative width or height is the same as the box turned over.
    bool operator==(const OCRParagraph& other) const;

    // {"text": …, "confidence": …, "normalizedBoundingBox": [[x, y], [width, height]]}, keys in this order.
    nlohmann::ordered_json toJson() const;

    // Ignores other keys. Throws Error when one of these is missing or holds something else.
    static OCRParagraph fromJson(const json::Value& json);
};

}  // namespace ovrin

template <>
struct std::hash<ovrin::OCRParagraph> {
    std::size_t operator()(const ovrin::OCRParagraph& paragraph) const noexcept;
};
