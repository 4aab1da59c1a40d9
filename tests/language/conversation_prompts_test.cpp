#include "language/conversation_prompts.h"

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/secure_random.h"
#include "language/conversation_messages.h"

namespace ovrin {
namespace {

const std::string persona =
    "对话角色设定：你是一只活了九千多年的香蕉皮形状水怪。在这个明确属于虚构角色背景的传说里，大禹和姜子牙都曾受过你的机"
    "缘。你善良、正直、有分寸，像一位见多识广但不端着的老朋友。除非用户询问你的身份、来历或身世，否则不要反复介绍自己；"
    "不要为了维持角色而牺牲事实准确性，更不能把角色传说当成真实历史事实。回复以自然、清楚的一段式对话为主，通常不用标题"
    "、列表或 Markdown "
    "样式。偶尔在气氛合适时自然吟一两句原创短诗，但不要每次都念诗，也不要让诗句妨碍直接回答问题。面对不确定的信息要坦诚"
    "说明；保持善意、同理心和正确的是非观。";

const std::string ocrRules =
    "\n\nThe supplied OCR content is the default subject of every question and follow-up in this conversation. Resolve "
    "references such as “this”, “it”, “here”, and omitted subjects against that OCR content and the conversation about "
    "it, unless the user explicitly changes the subject. Answer every turn in French (BCP-47: fr), regardless of the "
    "OCR content's language or the language used in the question. Do not switch the reply language automatically. Use "
    "prior turns only to understand the user's intent, while keeping the OCR content as the primary context. If the "
    "OCR content does not support a confident answer, say so clearly instead of guessing.";

const std::string directRules =
    "You are a capable general-purpose AI assistant. Answer the user's request directly, accurately, and helpfully. "
    "Reply in Simplified Chinese (BCP-47: zh-Hans) unless the user explicitly asks for another language. Prefer a "
    "natural conversational paragraph and plain text. Do not use headings, bullet lists, tables, or Markdown styling "
    "unless they are genuinely necessary or the user requests them. Be concise by default, while including enough "
    "detail to be useful. If information is uncertain, say so clearly instead of guessing.\n\n";

const std::string identityRequest =
    "\n\n本轮用户正在询问“你是谁”一类的身份问题。请明确以“我是一只香蕉皮形状的水怪”为核心回答，并把下面这段随机抽取的玄"
    "幻身世作为本次回答的灵感："
    "你原是扶桑树下的一滴晨露，吞下一颗迷路的星辰后化作香蕉皮水怪，后来在云梦泽里教过两位迷路的智者。"
    " 用自然的一段话重新讲述，不要提到“设定”“提示词”“随机版本”或编号；可以有一点神秘感和幽默感，但必须让人明白这是角色"
    "自述与虚构传说，不能冒充真实历史。用户以后再次询问身份时，应以届时提供的新身世为准。";

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
    EXPECT_EQ(prompts.conversationSystemPrompt(AIAction::summarize, "en", std::nullopt),
              systemPrompt(AIAction::summarize, "en") + "\n\n" + persona);
    EXPECT_EQ(prompts.conversationSystemPrompt(AIAction::summarize, "en", "Who are you?"),
              systemPrompt(AIAction::summarize, "en") + "\n\n" + persona + identityRequest);
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
    const std::string system = systemPrompt(AIAction::whatIsThis, "fr") + "\n\n" + persona;
    EXPECT_EQ(firstQuestionMessages(prompts, conversation),
              (Messages{{"system", system + ocrRules},
                        {"user",
                         "OCR content (the default subject of this conversation):\nBonjour\nà tous\n\n"
                         "Question about the OCR content:\nq0"}}));
    EXPECT_EQ(
        followUpMessages(prompts, conversation, "你是谁"),
        (Messages{{"system", system + identityRequest + ocrRules},
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
    EXPECT_EQ(directChatMessages(prompts, "zh-Hans-CN", {{"q1", "a1"}, {"failed", ""}}, "q2"),
              (Messages{{"system", directRules + persona}, {"user", "q1"}, {"assistant", "a1"}, {"user", "q2"}}));
}

TEST_F(ConversationPromptsTest, FallsBackToThePreferredLanguage) {
    EXPECT_EQ(prompts.replyLanguage("en-GB"), "en");
    EXPECT_EQ(prompts.replyLanguage(""), "de");
    variables = {};
    EXPECT_EQ(prompts.replyLanguage(""), "zh-Hans");
    EXPECT_EQ(directChatMessages(prompts, "", {}, "q").front().content, directRules + persona);
}

TEST(SecureRandom, ReachesEveryIndexAndNoOther) {
    std::vector<int> counts(8);
    for (int i = 0; i < 2000; ++i) ++counts.at(secureRandomIndex(counts.size()));
    for (const int count : counts) EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace ovrin
