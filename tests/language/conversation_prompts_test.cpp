#include "language/conversation_prompts.h"

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/secure_random.h"
#include "language/conversation_messages.h"

namespace ovrin {
namespace {

using Messages = std::vector<DeepSeek::Message>;

class ConversationPromptsTest : public ::testing::Test {
protected:
    Environment::Variables variables{{"LANG", "de_DE.UTF-8"}};
    std::size_t picks = 0;
    ConversationPrompts prompts{[this] { return Environment(variables); },
                                [this](std::size_t count) {
                                    EXPECT_EQ(count, 8U);
                                    ++picks;
                                    return 5;
                                }};

    // What the system prompt about recognised text begins with, for a question that is none about the identity.
    std::string persona() const {
        const std::string action = systemPrompt(AIAction::summarize, "en");
        const std::string whole = prompts.conversationSystemPrompt(AIAction::summarize, "en", std::nullopt);
        EXPECT_TRUE(whole.starts_with(action + "\n\n对话角色设定：")) << whole;
        return whole.substr(action.size());
    }
};

TEST(AIAction, HasRawValuesQuestionsAndPrompts) {
    for (const AIAction action : allAIActions) EXPECT_EQ(aiAction(rawValue(action)), action);
    EXPECT_EQ(aiAction("Explain"), std::nullopt);
    EXPECT_EQ(defaultQuestion(AIAction::whatIsThis), "这是什么？");
    EXPECT_EQ(systemPrompt(AIAction::explain, "fr"),
              "Explain the supplied content clearly and accurately in French. Use concise structure and preserve "
              "important terminology.");
    EXPECT_EQ(
        systemPrompt(AIAction::whatIsThis, "ja"),
        "Identify what the supplied content is, give essential context, and answer in Japanese. Avoid unsupported "
        "guesses.");
    EXPECT_EQ(systemPrompt(AIAction::summarize, "qq-unknown"),
              "Summarize the supplied content in qq-unknown. Preserve the key facts, decisions, numbers, and caveats.");
    EXPECT_EQ(
        systemPrompt(AIAction::translateBetter, "zh-Hans"),
        "Translate the supplied content naturally into Simplified Chinese (BCP-47: zh-Hans). Preserve meaning, tone, "
        "structure, names, numbers, and code. Return only the improved translation.");
}

TEST_F(ConversationPromptsTest, RecognisesQuestionsAboutItsIdentity) {
    for (const char* question : {"Who are you?", "WHAT IS YOUR NAME", "who are you to say that", "Whö äre yoü",
                                 "先别说这个，介绍一下你自己吧", "请做自我介绍", "你是谁"}) {
        EXPECT_TRUE(prompts.isIdentityQuestion(question)) << question;
    }
    for (const char* question : {"", "这是什么？", "who is she", "whoareyou"}) {
        EXPECT_FALSE(prompts.isIdentityQuestion(question)) << question;
    }
}

TEST_F(ConversationPromptsTest, AnswersWithThePersonaExceptForABetterTranslation) {
    const std::string plain = systemPrompt(AIAction::summarize, "en") + persona();
    const std::string asked = prompts.conversationSystemPrompt(AIAction::summarize, "en", "Who are you?");
    EXPECT_TRUE(asked.starts_with(plain + "\n\n本轮用户正在询问“你是谁”一类的身份问题。")) << asked;
    EXPECT_NE(asked.find("你原是扶桑树下的一滴晨露"), std::string::npos) << "the story that was picked";
    EXPECT_EQ(prompts.conversationSystemPrompt(AIAction::translateBetter, "en", "Who are you?"),
              systemPrompt(AIAction::translateBetter, "en"));
    EXPECT_EQ(picks, 1U);
}

TEST_F(ConversationPromptsTest, LaysOutAConversationAboutRecognisedText) {
    OCRConversation conversation{.action = AIAction::whatIsThis,
                                 .replyLanguage = "FR-fr",
                                 .content = "Bonjour\nà tous",
                                 .firstQuestion = "q0",
                                 .firstAnswer = "a0",
                                 .followUps = {{"q1", "a1"}, {"failed", ""}, {"q2", "a2"}}};
    const std::string system = prompts.ocrConversationSystemPrompt(AIAction::whatIsThis, "fr", "q0");
    EXPECT_TRUE(system.starts_with(systemPrompt(AIAction::whatIsThis, "fr") + persona() +
                                   "\n\nThe supplied OCR content is the default subject"));
    EXPECT_NE(system.find("Answer every turn in French (BCP-47: fr)"), std::string::npos);
    EXPECT_EQ(firstQuestionMessages(prompts, conversation),
              (Messages{{"system", system},
                        {"user",
                         "OCR content (the default subject of this conversation):\nBonjour\nà tous\n\n"
                         "Question about the OCR content:\nq0"}}));
    EXPECT_EQ(
        followUpMessages(prompts, conversation, "你是谁"),
        (Messages{{"system", prompts.ocrConversationSystemPrompt(AIAction::whatIsThis, "fr", "你是谁")},
                  {"user",
                   "OCR content (the default subject of this conversation):\nBonjour\nà tous\n\n"
                   "Initial question about the OCR content:\nq0"},
                  {"assistant", "a0"},
                  {"user", "q1"},
                  {"assistant", "a1"},
                  {"user", "q2"},
                  {"assistant", "a2"},
                  {"user", "Follow-up question about the OCR content unless explicitly stated otherwise:\n你是谁"}}));
}

TEST_F(ConversationPromptsTest, LaysOutTheFreeChat) {
    Messages messages = directChatMessages(prompts, "zh-Hans-CN", {{"q1", "a1"}, {"failed", ""}}, "q2");
    const std::string system = messages.front().content;
    EXPECT_NE(system.find("Reply in Simplified Chinese (BCP-47: zh-Hans) unless"), std::string::npos);
    EXPECT_TRUE(system.ends_with(persona()));
    EXPECT_EQ(messages, (Messages{{"system", system}, {"user", "q1"}, {"assistant", "a1"}, {"user", "q2"}}));
}

TEST_F(ConversationPromptsTest, FallsBackToThePreferredLanguage) {
    EXPECT_EQ(prompts.replyLanguage("en-GB"), "en");
    EXPECT_EQ(prompts.replyLanguage(""), "de");
    variables = {};
    EXPECT_EQ(prompts.replyLanguage(""), "zh-Hans");
    EXPECT_EQ(directChatMessages(prompts, "", {}, "q"), directChatMessages(prompts, "zh-Hans", {}, "q"));
}

TEST(SecureRandom, ReachesEveryIndexAndNoOther) {
    std::vector<int> counts(8);
    for (int i = 0; i < 2000; ++i) ++counts.at(secureRandomIndex(counts.size()));
    for (const int count : counts) EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace ovrin
