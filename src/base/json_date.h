// A moment in time as a member of a serialised record.
#pragma once

#include <optional>
#include <string_view>

#include "base/date_time.h"
#include "base/json.h"

namespace ovrin {

enum class DateForm {
    secondsSinceReferenceDate,  // a number; the reference date is 2001-01-01T00:00:00Z
    iso8601,                    // a string in UTC; fractions of a second are dropped
};

json::Value encodedDate(Timestamp moment, DateForm form);

// The member of the object; none when it is missing, of another kind or beyond what a Timestamp holds.
std::optional<Timestamp> decodedDate(const json::Value& object, std::string_view name, DateForm form);

}  // namespace ovrin
