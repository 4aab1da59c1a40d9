#include "base/environment.h"

#include <cstdlib>
#include <utility>

#include <unistd.h>

namespace ovrin {

namespace {

constexpr std::string_view secretSuffix = "_API_KEY";

// What withholdSecretsFromChildren() has taken out of the process's own variables.
Environment::Variables& withheldVariables() {
    static Environment::Variables variables;
    return variables;
}

}  // namespace

Environment::Environment(Variables variables) : variables_(std::move(variables)) {}

Environment Environment::ofProcess() {
    Variables variables = withheldVariables();
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        // The first of two entries with one name is the one that getenv() finds.
        variables.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    return Environment(std::move(variables));
}

void Environment::withholdSecretsFromChildren() {
    for (const auto& [name, value] : ofProcess().variables_) {
        if (!name.ends_with(secretSuffix)) continue;
        withheldVariables().insert_or_assign(name, value);
        ::unsetenv(name.c_str());
    }
}

std::optional<std::string> Environment::value(std::string_view name) const {
    const auto found = variables_.find(name);
    if (found == variables_.end() || found->second.empty()) return std::nullopt;
    return found->second;
}

}  // namespace ovrin
