#include "base/environment.h"

#include <utility>

#include <unistd.h>

namespace ovrin {

Environment::Environment(Variables variables) : variables_(std::move(variables)) {}

Environment Environment::ofProcess() {
    Variables variables;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        // The first of two entries with one name is the one that getenv() finds.
        variables.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    return Environment(std::move(variables));
}

std::optional<std::string> Environment::value(std::string_view name) const {
    const auto found = variables_.find(name);
    if (found == variables_.end() || found->second.empty()) return std::nullopt;
    return found->second;
}

}  // namespace ovrin
