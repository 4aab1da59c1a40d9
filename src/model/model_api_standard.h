// The two wire standards that a model service can speak, and what each adds to the base URL.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace ovrin {

enum class ModelAPIStandard { openAICompatible, anthropic };

// In the order in which a picker offers them.
inline constexpr std::array allModelAPIStandards{ModelAPIStandard::openAICompatible, ModelAPIStandard::anthropic};

// The text that preferences and the environment use: "openai-compatible", "anthropic".
std::string_view rawValue(ModelAPIStandard standard);

// The standard of a raw value; exact and case-sensitive, none for any other text.
std::optional<ModelAPIStandard> modelAPIStandard(std::string_view rawValue);

// The end of the request path: "chat/completions", "messages".
std::string_view pathSuffix(ModelAPIStandard standard);

}  // namespace ovrin
