// The three ways in which the history window sorts records: the kind that a row shows, and the filter that rows pass.
// They are different rules over the same text.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "theme/ov_icon.h"

namespace ovrin {

// What a row says about its record.
enum class HistoryKind : std::uint8_t { ai, ocr, replace, translation };

// The first that applies: the type contains "ai", "ocr" or "replace"; a translation otherwise.
HistoryKind historyKind(std::string_view recordType);
std::string_view label(HistoryKind kind);
OVIcon icon(HistoryKind kind);

enum class HistoryFilter : std::uint8_t { all, ocr, translation, ai, replace };

// In the order of the filter bar.
inline constexpr std::array historyFilters{HistoryFilter::all, HistoryFilter::ocr, HistoryFilter::translation,
                                           HistoryFilter::ai, HistoryFilter::replace};
std::string_view label(HistoryFilter filter);

// Whether the type contains the filter's own word, in the same letter case.
bool passes(std::string_view recordType, HistoryFilter filter);

}  // namespace ovrin
