// The system prompts of the conversations about recognised text and of the free chat, with the persona that answers.
//
// Immutable; usable from any thread. A question about the assistant's own identity brings in one of eight stories of
// its origin, picked anew for every prompt.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/environment.h"
#include "language/ai_action.h"

namespace ovrin {

class ConversationPrompts {
public:
    // Gives a uniformly distributed index below the count, from a secure source. Any thread.
    using RandomIndex = std::function<std::size_t(std::size_t count)>;

    // The environment tells the user's locale and preferred languages; it is read for every prompt.
    ConversationPrompts(EnvironmentSource environment, RandomIndex randomIndex);

    // The action's prompt with the persona; a better translation has none.
    std::string conversationSystemPrompt(AIAction action, std::string_view targetLanguage,
                                         const std::optional<std::string>& currentQuestion) const;

    // The prompt of a conversation about recognised text, answered in the reply language whatever the text's is.
    std::string ocrConversationSystemPrompt(AIAction action, std::string_view replyLanguage,
                                            const std::optional<std::string>& currentQuestion) const;

    // The prompt of the free chat; without a reply language the user's first preferred one.
    std::string directConversationSystemPrompt(std::string_view replyLanguage,
                                               const std::optional<std::string>& currentQuestion) const;

    // Whether the question asks who the assistant is.
    bool isIdentityQuestion(std::string_view question) const;

    // The language of answers for a stored default target: normalised; when that is empty, the user's first preferred
    // language, else Simplified Chinese.
    std::string replyLanguage(std::string_view targetLanguage) const;

private:
    std::string personaPrompt(const std::optional<std::string>& currentQuestion) const;

    EnvironmentSource environment_;
    RandomIndex randomIndex_;
};

}  // namespace ovrin
