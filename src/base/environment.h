// The process environment as a value: a copy taken at one moment, so that reading it is free of races and a test can
// hand in its own. Whoever needs it more than once keeps an EnvironmentSource and asks anew each time.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace ovrin {

class Environment {
public:
    using Variables = std::map<std::string, std::string, std::less<>>;

    Environment() = default;
    explicit Environment(Variables variables);

    // The variables of this process as they are now. Any thread, as long as nobody changes them (nobody here does).
    static Environment ofProcess();

    // Takes the API keys (every variable whose name ends in _API_KEY) out of what children of the process inherit.
    // ofProcess() still has them. Called once, before the first thread starts.
    static void withholdSecretsFromChildren();

    // The value as it was set, untrimmed; none when the variable is unset or empty.
    std::optional<std::string> value(std::string_view name) const;

    const Variables& variables() const { return variables_; }

private:
    Variables variables_;
};

// Gives the environment at the moment of the call. Any thread.
using EnvironmentSource = std::function<Environment()>;

}  // namespace ovrin
