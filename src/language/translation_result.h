// The record of one finished translation. A plain value with equality, hashing and a serialised form with fixed keys.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "base/date_time.h"
#include "base/json.h"
#include "base/json_date.h"
#include "base/uuid.h"

namespace ovrin {

struct TranslationResult {
    Uuid id{};
    std::string sourceText{};                     // exactly as it was passed in
    std::string translatedText{};                 // the whole reply of the service
    std::optional<std::string> sourceLanguage{};  // BCP-47 tag; none when detection gave nothing
    std::string targetLanguage{};                 // BCP-47 tag after the automatic switch
    Timestamp createdAt{};                        // when the reply was complete

    bool operator==(const TranslationResult&) const = default;

    // Keys as the fields are named; no source language when there is none.
    json::Value toJson(DateForm form) const;

    // Ignores other keys; takes a missing or null source language as none. Throws Error when another key is missing or
    // one holds something else.
    static TranslationResult fromJson(const json::Value& json, DateForm form);
};

}  // namespace ovrin

template <>
struct std::hash<ovrin::TranslationResult> {
    std::size_t operator()(const ovrin::TranslationResult& result) const noexcept;
};
