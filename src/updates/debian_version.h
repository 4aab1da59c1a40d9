// Versions of Debian packages, and which of two is the newer one: the rule of the Debian policy, chapter 5.6.12.
#pragma once

#include <compare>
#include <string_view>

namespace ovrin {

// Whether the text is a version: an epoch in front of a colon, an upstream part that begins with a digit, a revision
// behind the last hyphen; epoch and revision may be missing.
bool isDebianVersion(std::string_view text);

// Both are versions. An absent revision is older than any other but 0; a tilde sorts before the end.
std::weak_ordering compareDebianVersions(std::string_view first, std::string_view second);

}  // namespace ovrin
