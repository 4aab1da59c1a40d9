// The messages of a conversation, request by request: every request carries the whole history, because the service
// remembers nothing. Questions are trimmed by the caller.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "language/ai_action.h"
#include "language/conversation_prompts.h"
#include "model/deep_seek_types.h"

namespace ovrin {

// One question and its answer; a turn whose answer stayed empty is not told to the service again.
struct ConversationTurn {
    std::string question;
    std::string answer;
};

// A conversation about recognised text, as far as it has come.
struct OCRConversation {
    AIAction action = AIAction::explain;  // the one that opened it
    std::string replyLanguage;
    std::string content;  // the text that it was opened on
    std::string firstQuestion;
    std::string firstAnswer;
    std::vector<ConversationTurn> followUps;  // oldest first
};

// The request for the first answer.
std::vector<DeepSeek::Message> firstQuestionMessages(const ConversationPrompts& prompts,
                                                     const OCRConversation& conversation);

// The request for the answer to one more question.
std::vector<DeepSeek::Message> followUpMessages(const ConversationPrompts& prompts, const OCRConversation& conversation,
                                                std::string_view question);

// The request of the free chat; earlier turns oldest first.
std::vector<DeepSeek::Message> directChatMessages(const ConversationPrompts& prompts, std::string_view replyLanguage,
                                                  const std::vector<ConversationTurn>& earlier,
                                                  std::string_view question);

}  // namespace ovrin
