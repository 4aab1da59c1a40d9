#include "platform/linux/desktop/selection_client.h"

#include <algorithm>
#include <array>

namespace ovrin {

bool isMetaTarget(std::string_view target) {
    constexpr std::array metaTargets{"TARGETS",          "MULTIPLE",        "TIMESTAMP", "SAVE_TARGETS",
                                     "INSERT_SELECTION", "INSERT_PROPERTY", "DELETE"};
    return std::ranges::find(metaTargets, target) != metaTargets.end();
}

}  // namespace ovrin
