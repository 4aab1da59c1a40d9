#include "model/model_api_configuration.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "model/deep_seek_error.h"
#include "model/request_url.h"

namespace ovrin {

namespace {

// A line break would start a header of its own on the wire, a NUL would end this one early.
constexpr std::string_view breaksHeader{"\n\r\0", 3};

bool isValidHeader(std::string_view name, std::string_view value) {
    return name.find(':') == std::string_view::npos && name.find_first_of(breaksHeader) == std::string_view::npos &&
           value.find_first_of(breaksHeader) == std::string_view::npos;
}

}  // namespace

// Header names are ASCII. No other letters are folded, or a look-alike name would pass for one that the server reads.
std::optional<std::string> ModelAPIConfiguration::headerValue(std::string_view named) const {
    const auto found = std::ranges::find_if(
        customHeaders, [&](const auto& entry) { return text::equalsIgnoringAsciiCase(entry.first, named); });
    if (found == customHeaders.end()) return std::nullopt;
    return std::string(text::trimmed(found->second));
}

bool ModelAPIConfiguration::hasAuthentication() const {
    if (!text::trimmed(apiKey).empty()) return true;
    const auto isGiven = [&](std::string_view name) { return !headerValue(name).value_or("").empty(); };
    return (standard == ModelAPIStandard::anthropic && isGiven("x-api-key")) || isGiven("Authorization");
}

bool ModelAPIConfiguration::isReady() const {
    return hasAuthentication() && !text::trimmed(model).empty() && RequestURL::parse(text::trimmed(connectionURL));
}

std::string ModelAPIConfiguration::endpointURL() const {
    const auto url = RequestURL::parse(text::trimmed(connectionURL));
    if (!url) throw DeepSeekError::invalidConnectionURL();
    const std::string_view suffix = pathSuffix(standard);
    if (url->pathEndsWith("/" + std::string(suffix))) return url->string();
    return url->appendingPathComponent(suffix).string();
}

std::map<std::string, std::string> ModelAPIConfiguration::normalizedHeaders() const {
    std::map<std::string, std::string> result;
    for (const auto& [enteredName, enteredValue] : customHeaders) {
        const std::string name(text::trimmed(enteredName));
        const std::string value(text::trimmed(enteredValue));
        if (name.empty() || value.empty()) continue;
        if (!isValidHeader(name, value)) throw DeepSeekError::invalidHeader(name);
        std::erase_if(result, [&](const auto& earlier) { return text::equalsIgnoringAsciiCase(earlier.first, name); });
        result.emplace(name, value);
    }
    return result;
}

ModelAPIConfiguration ModelAPIConfiguration::validated() const {
    if (!hasAuthentication()) throw DeepSeekError::missingAPIKey();
    if (text::trimmed(model).empty()) throw DeepSeekError::missingModel();
    static_cast<void>(endpointURL());
    static_cast<void>(normalizedHeaders());
    if (maxOutputTokens <= 0) throw DeepSeekError::invalidMaxOutputTokens();
    return *this;
}

}  // namespace ovrin
