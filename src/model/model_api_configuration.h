// How to reach the language-model service: standard, base URL, key, model, extra headers, output limit.
//
// A plain value, assembled elsewhere with whatever the user entered; it decides for itself whether it is complete and
// what is sent. Every shortcoming is a DeepSeekError whose text is shown to the user.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "model/model_api_standard.h"

namespace ovrin {

struct ModelAPIConfiguration {
    static constexpr std::string_view defaultOpenAIConnectionURL = "https://api.openai.com/v1";
    static constexpr std::string_view defaultAnthropicConnectionURL = "https://api.anthropic.com/v1";
    static constexpr std::string_view defaultOpenAIModel = "gpt-5.2";
    static constexpr std::string_view defaultAnthropicModel = "claude-sonnet-4-6";
    static constexpr std::int64_t defaultMaxOutputTokens = 4096;

    ModelAPIStandard standard = ModelAPIStandard::openAICompatible;
    std::string connectionURL;  // as entered: may carry white space, may already end in the standard's path suffix
    std::string apiKey;         // as entered, possibly empty
    std::string model;          // as entered
    std::map<std::string, std::string> customHeaders;  // name to value, as entered
    std::int64_t maxOutputTokens = 0;                  // valid above 0

    bool operator==(const ModelAPIConfiguration&) const = default;

    // True when there is a key, a custom header that authenticates, a model and a usable URL.
    bool isReady() const;
    bool hasAuthentication() const;

    // The value, trimmed, of the first custom header with this name in any case.
    std::optional<std::string> headerValue(std::string_view named) const;

    // The URL of the request. Throws DeepSeekError invalidConnectionURL.
    std::string endpointURL() const;

    // The custom headers as they are sent: trimmed, rows with an empty name or value left out, of names that differ
    // only in case the last one. Throws DeepSeekError invalidHeader.
    std::map<std::string, std::string> normalizedHeaders() const;

    // This value unchanged. Throws the first shortcoming as DeepSeekError.
    ModelAPIConfiguration validated() const;
};

}  // namespace ovrin
