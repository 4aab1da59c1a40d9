#include "updates/update_configuration.h"

#include <string_view>

#include "base/text.h"
#include "model/request_url.h"

namespace ovrin {

namespace {

constexpr std::string_view placeholderStart = "$(";

bool isFilledIn(std::string_view setting) {
    return !setting.empty() && setting.find(placeholderStart) == std::string_view::npos;
}

}  // namespace

bool UpdateConfiguration::isConfigured() const {
    const std::string_view feed = text::trimmed(feedURL);
    return isFilledIn(feed) && isFilledIn(text::trimmed(publicKey)) &&
           text::asciiLowercased(feed.substr(0, feed.find(':'))) == "https" && RequestURL::parse(feed);
}

std::string UpdateConfiguration::versionDisplay() const {
    const auto shown = [](const std::string& value) { return value.empty() ? std::string("–") : value; };
    return "版本 " + shown(version) + "（" + shown(build) + "）";
}

std::string UpdateConfiguration::packageVersion() const {
    return ovrin::packageVersion(version, build);
}

std::string packageVersion(const std::string& version, const std::string& build) {
    return build.empty() ? version : version + "-" + build;
}

}  // namespace ovrin
