#include "language/ai_action.h"

#include <algorithm>

#include "language/language_names.h"

namespace ovrin {

std::string_view rawValue(AIAction action) {
    switch (action) {
        case AIAction::explain:
            return "explain";
        case AIAction::whatIsThis:
            return "whatIsThis";
        case AIAction::summarize:
            return "summarize";
        case AIAction::translateBetter:
            return "translateBetter";
    }
    return {};
}

std::optional<AIAction> aiAction(std::string_view rawValue) {
    const auto* const found =
        std::ranges::find(allAIActions, rawValue, [](AIAction action) { return ovrin::rawValue(action); });
    if (found == allAIActions.end()) return std::nullopt;
    return *found;
}

std::string_view defaultQuestion(AIAction action) {
    switch (action) {
        case AIAction::explain:
            return "请解释一下这段内容";
        case AIAction::whatIsThis:
            return "这是什么？";
        case AIAction::summarize:
            return "请概括这段内容";
        case AIAction::translateBetter:
            return "请给出更自然、准确的翻译";
    }
    return {};
}

std::string systemPrompt(AIAction action, std::string_view targetLanguage) {
    const std::string name = englishLanguageName(targetLanguage);
    const std::string tag(targetLanguage);
    switch (action) {
        case AIAction::explain:
            return "Explain the supplied content clearly and accurately in " + name +
                   ". Use concise structure and preserve important terminology.";
        case AIAction::whatIsThis:
            return "Identify what the supplied content is, give essential context, and answer in " + name +
                   ". Avoid unsupported guesses.";
        case AIAction::summarize:
            return "Summarize the supplied content in " + name +
                   ". Preserve the key facts, decisions, numbers, and caveats.";
        case AIAction::translateBetter:
            return "Translate the supplied content naturally into " + name + " (BCP-47: " + tag +
                   "). Preserve meaning, tone, structure, names, numbers, and code. Return only the improved "
                   "translation.";
    }
    return {};
}

}  // namespace ovrin
