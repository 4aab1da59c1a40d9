// What the user can ask about content with one gesture, and the prompt of each.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace ovrin {

enum class AIAction { explain, whatIsThis, summarize, translateBetter };

inline constexpr std::array allAIActions{AIAction::explain, AIAction::whatIsThis, AIAction::summarize,
                                         AIAction::translateBetter};

// The serialised form: the name of the case.
std::string_view rawValue(AIAction action);
std::optional<AIAction> aiAction(std::string_view rawValue);

// The question that is asked when the action is started without one.
std::string_view defaultQuestion(AIAction action);

// The prompt that answers in the target language (a BCP-47 tag).
std::string systemPrompt(AIAction action, std::string_view targetLanguage);

}  // namespace ovrin
