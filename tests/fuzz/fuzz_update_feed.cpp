// A feed is refused with words or read, and what was read keeps the rules that the rest of the program relies on.
#include "base/error.h"
#include "base/text.h"
#include "check.h"
#include "updates/debian_version.h"
#include "updates/update_feed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto items = ovrin::parseUpdateFeed(std::string_view(reinterpret_cast<const char*>(data), size));
        OVRIN_CHECK(items.size() <= ovrin::maximumUpdateFeedItems);
        for (const ovrin::UpdateItem& item : items) {
            OVRIN_CHECK(ovrin::isDebianVersion(item.packageVersion()));
            OVRIN_CHECK(item.packageSize > 0 && item.packageSize <= ovrin::maximumUpdatePackageSize);
            OVRIN_CHECK(!item.target.distribution.empty() && !item.target.architecture.empty());
            OVRIN_CHECK(ovrin::text::isValidUtf8(item.notes));
        }
    } catch (const ovrin::Error& error) {
        OVRIN_CHECK(!error.errorDescription().empty());
    }
    return 0;
}
