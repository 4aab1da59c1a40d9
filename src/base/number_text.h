// Numbers as text that does not depend on the locale.
#pragma once

#include <cstdint>
#include <string>

namespace ovrin {

// The shortest decimal form that reads back to the same value: "0.0", "0.25", "3.0"; "1e-05" for magnitudes below
// 0.0001 and "1e+18" for whole numbers beyond 2 to the 54th, with a signed exponent of at least two digits.
std::string shortestDecimalText(double value);

// A number of bytes for people, in decimal units: "0 B", "999 B", "1.2 KB", "48.0 MB", "1.5 GB".
std::string byteCountText(std::uint64_t count);

}  // namespace ovrin
