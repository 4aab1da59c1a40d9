// The feed of updates: an RSS document whose items each offer one package for one kind of machine. What it looks like
// is written down in docs/update-feed.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date_time.h"

namespace ovrin {

// The machines that a package is made for, in the words of os-release and dpkg.
struct UpdateTarget {
    std::string distribution;  // ID: "debian"
    std::string release;       // VERSION_ID: "12"
    std::string architecture;  // "amd64"

    bool operator==(const UpdateTarget&) const = default;
};

struct UpdateItem {
    std::string version;  // "1.2"
    std::string build;    // "34"; may be empty
    UpdateTarget target;
    std::string packageURL;         // https
    std::uint64_t packageSize = 0;  // bytes, at least 1 and at most maximumUpdatePackageSize
    std::string signature;          // of the package: Ed25519, in Base64
    std::string notes;              // Markdown from outside; may be empty
    std::string page;               // https URL for people; may be empty
    std::optional<Timestamp> date;

    // The version of its package, as Debian writes it.
    std::string packageVersion() const;

    bool operator==(const UpdateItem&) const = default;
};

inline constexpr std::size_t maximumUpdateFeedSize = std::size_t{1} << 20U;  // bytes
inline constexpr std::size_t maximumUpdateFeedItems = 200;
inline constexpr std::uint64_t maximumUpdatePackageSize = std::uint64_t{1} << 30U;  // bytes

// The items in the order of the document. Items of RSS that hold nothing of ours are left out; one that is ours and
// incomplete makes the feed wrong as a whole, as do more items than the bound and any DOCTYPE, be its entities used or
// not. Throws Error with the sentence for the user.
std::vector<UpdateItem> parseUpdateFeed(std::string_view document);

}  // namespace ovrin
