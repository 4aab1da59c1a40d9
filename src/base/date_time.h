// Moments in time and their text form (ISO 8601 as the internet writes it, RFC 3339).
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ovrin {

// A moment on the system's clock, in UTC.
using Timestamp = std::chrono::system_clock::time_point;

// Gives the present moment; tests hand in their own.
using Clock = std::function<Timestamp()>;

// "2026-03-01T09:05:07Z": UTC, whole seconds (fractions are dropped, not rounded).
std::string iso8601Text(Timestamp moment);

// A full date and time with its zone: "2026-03-01T09:05:07Z", "2026-03-01T17:05:07+08:00"; a fraction of a second is
// read too. None for anything else, such as a 30th of February or a missing zone.
std::optional<Timestamp> parseIso8601(std::string_view text);

}  // namespace ovrin
