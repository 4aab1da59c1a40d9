// Whatever the user enters as URL and headers is refused or gives a request that holds only what was meant.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "model/deep_seek_error.h"
#include "model/model_api_configuration.h"

namespace {

using ovrin::ModelAPIConfiguration;

// The input's fields, separated by 0xFF bytes, which are no UTF-8.
std::vector<std::string> fields(std::string_view input) {
    std::vector<std::string> result(1);
    for (const char character : input) {
        if (character == '\xFF') {
            result.emplace_back();
        } else {
            result.back() += character;
        }
    }
    return result;
}

void checkEndpoint(const ModelAPIConfiguration& configuration) {
    const std::string endpoint = configuration.endpointURL();
    for (const char character : endpoint) OVRIN_CHECK(character != '\n' && character != '\r' && character != '\0');
    ModelAPIConfiguration again = configuration;
    again.connectionURL = endpoint;
    OVRIN_CHECK(again.endpointURL() == endpoint);
}

void checkHeaders(const ModelAPIConfiguration& configuration) {
    for (const auto& [name, value] : configuration.normalizedHeaders()) {
        OVRIN_CHECK(!name.empty() && !value.empty());
        OVRIN_CHECK(name.find_first_of(std::string_view(":\r\n\0", 4)) == std::string::npos);
        OVRIN_CHECK(value.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const auto parts = fields(std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
    ModelAPIConfiguration configuration{
        .standard = ovrin::allModelAPIStandards[data[0] % ovrin::allModelAPIStandards.size()],
        .connectionURL = parts[0],
        .apiKey = "key",
        .model = "model",
        .customHeaders = {},
        .maxOutputTokens = 1};
    for (std::size_t i = 1; i + 1 < parts.size(); i += 2) configuration.customHeaders[parts[i]] = parts[i + 1];
    try {
        OVRIN_CHECK(configuration.validated() == configuration);
        OVRIN_CHECK(configuration.isReady());
        checkEndpoint(configuration);
        checkHeaders(configuration);
    } catch (const ovrin::DeepSeekError& error) {
        const auto errorCase = error.errorCase();
        OVRIN_CHECK(errorCase == ovrin::DeepSeekError::Case::invalidConnectionURL ||
                    errorCase == ovrin::DeepSeekError::Case::invalidHeader);
    }
    return 0;
}
