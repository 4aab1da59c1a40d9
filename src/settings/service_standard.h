// What the service page of the settings says and fills in for each standard of model services.
#pragma once

#include <string>
#include <string_view>

#include "model/model_api_configuration.h"

namespace ovrin {

// The texts that go with a standard, whether it is saved or not.
struct ServiceHints {
    std::string_view connectionURLPlaceholder;
    std::string_view modelPlaceholder;
    std::string_view automaticHeaders;  // the hint line of the headers' card
    std::string_view headerNamePlaceholder;
};
ServiceHints serviceHints(ModelAPIStandard standard);

// What the picker of the standard calls it: "OpenAI 兼容", "Anthropic".
std::string_view title(ModelAPIStandard standard);

std::string_view defaultConnectionURL(ModelAPIStandard standard);
std::string_view defaultModel(ModelAPIStandard standard);

// Whether what is in the field is nothing of the user's own, so that another standard's default may take its place.
bool isDefaultConnectionURL(std::string_view text, ModelAPIStandard standard);
bool isDefaultModel(std::string_view text, ModelAPIStandard standard);

}  // namespace ovrin
