#include "settings/service_standard.h"

#include <algorithm>

#include "base/text.h"

namespace ovrin {

ServiceHints serviceHints(ModelAPIStandard standard) {
    const bool isAnthropic = standard == ModelAPIStandard::anthropic;
    return {.connectionURLPlaceholder = defaultConnectionURL(standard),
            .modelPlaceholder = defaultModel(standard),
            .automaticHeaders = isAnthropic ? "自动添加 x-api-key、anthropic-version 与 Content-Type"
                                            : "自动添加 Authorization 与 Content-Type",
            .headerNamePlaceholder = isAnthropic ? "如 anthropic-beta" : "如 OpenAI-Project"};
}

std::string_view title(ModelAPIStandard standard) {
    return standard == ModelAPIStandard::anthropic ? "Anthropic" : "OpenAI 兼容";
}

std::string_view defaultConnectionURL(ModelAPIStandard standard) {
    return standard == ModelAPIStandard::anthropic ? ModelAPIConfiguration::defaultAnthropicConnectionURL
                                                   : ModelAPIConfiguration::defaultOpenAIConnectionURL;
}

std::string_view defaultModel(ModelAPIStandard standard) {
    return standard == ModelAPIStandard::anthropic ? ModelAPIConfiguration::defaultAnthropicModel
                                                   : ModelAPIConfiguration::defaultOpenAIModel;
}

bool isDefaultConnectionURL(std::string_view text, ModelAPIStandard standard) {
    text.remove_prefix(std::min(text.find_first_not_of(" /"), text.size()));
    text = text.substr(0, text.find_last_not_of(" /") + 1);
    return text.empty() || text == defaultConnectionURL(standard);
}

bool isDefaultModel(std::string_view text, ModelAPIStandard standard) {
    const std::string_view model = text::trimmed(text);
    if (model.empty()) return true;
    if (standard == ModelAPIStandard::anthropic) return model.starts_with("claude-");
    return model == ModelAPIConfiguration::defaultOpenAIModel || model == "deepseek-chat" ||
           model == "deepseek-reasoner";
}

}  // namespace ovrin
