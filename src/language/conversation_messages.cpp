#include "language/conversation_messages.h"

#include <utility>

namespace ovrin {

namespace {

constexpr const char* contentIntroduction = "OCR content (the default subject of this conversation):\n";

DeepSeek::Message systemMessage(std::string content) {
    return {.role = "system", .content = std::move(content)};
}

DeepSeek::Message userMessage(std::string content) {
    return {.role = "user", .content = std::move(content)};
}

DeepSeek::Message assistantMessage(std::string content) {
    return {.role = "assistant", .content = std::move(content)};
}

void appendAnswered(std::vector<DeepSeek::Message>& messages, const std::vector<ConversationTurn>& turns) {
    for (const ConversationTurn& turn : turns) {
        if (turn.answer.empty()) continue;
        messages.push_back(userMessage(turn.question));
        messages.push_back(assistantMessage(turn.answer));
    }
}

}  // namespace

std::vector<DeepSeek::Message> firstQuestionMessages(const ConversationPrompts& prompts,
                                                     const OCRConversation& conversation) {
    return {systemMessage(prompts.ocrConversationSystemPrompt(conversation.action, conversation.replyLanguage,
                                                              conversation.firstQuestion)),
            userMessage(contentIntroduction + conversation.content + "\n\nQuestion about the OCR content:\n" +
                        conversation.firstQuestion)};
}

std::vector<DeepSeek::Message> followUpMessages(const ConversationPrompts& prompts, const OCRConversation& conversation,
                                                std::string_view question) {
    std::vector<DeepSeek::Message> messages = {
        systemMessage(prompts.ocrConversationSystemPrompt(conversation.action, conversation.replyLanguage,
                                                          std::string(question))),
        userMessage(contentIntroduction + conversation.content + "\n\nInitial question about the OCR content:\n" +
                    conversation.firstQuestion),
        assistantMessage(conversation.firstAnswer)};
    appendAnswered(messages, conversation.followUps);
    messages.push_back(userMessage("Follow-up question about the OCR content unless explicitly stated otherwise:\n" +
                                   std::string(question)));
    return messages;
}

std::vector<DeepSeek::Message> directChatMessages(const ConversationPrompts& prompts, std::string_view replyLanguage,
                                                  const std::vector<ConversationTurn>& earlier,
                                                  std::string_view question) {
    std::vector<DeepSeek::Message> messages = {
        systemMessage(prompts.directConversationSystemPrompt(replyLanguage, std::string(question)))};
    appendAnswered(messages, earlier);
    messages.push_back(userMessage(std::string(question)));
    return messages;
}

}  // namespace ovrin
