// The outcome of one recognition run: what was read, in which language, when.
// A plain value with equality, hashing and a serialised form with fixed keys.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/date_time.h"
#include "base/json.h"
#include "base/json_date.h"
#include "recognition/ocr_paragraph.h"

namespace ovrin {

struct OCRResult {
    using DateForm = ovrin::DateForm;  // how a serialised result writes its time

    std::vector<OCRParagraph> paragraphs{};         // in the order they were reported; never empty from an engine
    std::optional<std::string> detectedLanguage{};  // BCP-47 tag of the whole text's dominant language
    Timestamp createdAt{};                          // when the run finished, in whole microseconds

    // The texts of all paragraphs in order with one line feed between neighbours; empty for none.
    std::string fullText() const;

    bool operator==(const OCRResult&) const = default;

    // {"paragraphs": […], "detectedLanguage": …, "createdAt": …}, keys in this order, no language when there is none.
    nlohmann::ordered_json toJson(DateForm form) const;

    // Ignores other keys; takes a missing or null language as none. Throws Error when another key is missing or one
    // holds something else.
    static OCRResult fromJson(const json::Value& json, DateForm form);
};

}  // namespace ovrin

template <>
struct std::hash<ovrin::OCRResult> {
    std::size_t operator()(const ovrin::OCRResult& result) const noexcept;
};
