#include "base/json_date.h"

#include <chrono>
#include <cmath>

#include <nlohmann/json.hpp>

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

}  // namespace

json::Value encodedDate(Timestamp moment, DateForm form) {
    if (form == DateForm::iso8601) return iso8601Text(moment);
    return Seconds(moment - referenceDate).count();
}

std::optional<Timestamp> decodedDate(const json::Value& object, std::string_view name, DateForm form) {
    if (form == DateForm::iso8601) {
        const auto text = json::string(object, name);
        return text ? parseIso8601(*text) : std::nullopt;
    }
    const auto seconds = json::number(object, name);
    if (!seconds || !(std::abs(*seconds) <= largestDistance)) return std::nullopt;
    return dateFromSeconds(*seconds);
}

}  // namespace ovrin
