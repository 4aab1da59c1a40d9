#include "model/model_api_standard.h"

#include <algorithm>

namespace ovrin {

std::string_view rawValue(ModelAPIStandard standard) {
    return standard == ModelAPIStandard::anthropic ? "anthropic" : "openai-compatible";
}

std::optional<ModelAPIStandard> modelAPIStandard(std::string_view rawValue) {
    const auto* const found = std::ranges::find(allModelAPIStandards, rawValue,
                                                [](ModelAPIStandard standard) { return ovrin::rawValue(standard); });
    if (found == allModelAPIStandards.end()) return std::nullopt;
    return *found;
}

std::string_view pathSuffix(ModelAPIStandard standard) {
    return standard == ModelAPIStandard::anthropic ? "messages" : "chat/completions";
}

}  // namespace ovrin
