// One past result: what went in, what came out, when, and by which action.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date_time.h"
#include "base/uuid.h"

namespace ovrin {

struct HistoryRecord {
    Uuid id;
    Timestamp createdAt;                    // when it was saved
    std::string sourceText;                 // recognised text, the selected or pasted text, the typed question
    std::optional<std::string> resultText;  // translation, replacement or answer; none until there is one
    std::string recordType;                 // one of historyRecordType

    friend bool operator==(const HistoryRecord&, const HistoryRecord&) = default;
};

// The values that the program gives to recordType. Readers tell kinds apart by what the value contains.
namespace historyRecordType {

inline constexpr std::string_view captureOCR = "capture-ocr";
inline constexpr std::string_view captureTranslation = "capture-translation";
inline constexpr std::string_view captureAI = "capture-ai";
inline constexpr std::string_view clipboardTranslation = "clipboard-translation";
inline constexpr std::string_view selectionTranslation = "selection-translation";
inline constexpr std::string_view selectionReplace = "selection-replace";
inline constexpr std::string_view directAI = "direct-ai";
inline constexpr std::string_view inputTranslation = "input-translation";

}  // namespace historyRecordType

}  // namespace ovrin

template <>
struct std::hash<ovrin::HistoryRecord> {
    std::size_t operator()(const ovrin::HistoryRecord& record) const noexcept;
};
