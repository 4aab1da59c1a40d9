// Where the updates of this build come from and whom it believes, and which version it is. All of it is settled when
// the program is built; nothing in its surroundings changes it.
#pragma once

#include <string>

namespace ovrin {

struct UpdateConfiguration {
    std::string feedURL;    // of the feed of updates; UTF-8
    std::string publicKey;  // Ed25519, 32 bytes in Base64: signs the packages
    std::string version;    // "1.2"; empty when the build names none
    std::string build;      // "34"; empty when the build names none

    // Whether updates can be looked for: the feed is an https URL, and neither it nor the key is a place that the build
    // should have filled ("$(KEY)"). White space around them does not count.
    bool isConfigured() const;

    // "版本 1.2（34）"; what is missing shows as an en dash.
    std::string versionDisplay() const;

    // The version of the Debian package of this build: "1.2-34", without a build "1.2".
    std::string packageVersion() const;
};

// The version of the Debian package that is made of a version and a build, which may be empty.
std::string packageVersion(const std::string& version, const std::string& build);

}  // namespace ovrin
