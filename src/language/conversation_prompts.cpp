#include "language/conversation_prompts.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"
#include "language/language_names.h"
#include "storage/app_config.h"

namespace ovrin {

namespace {

constexpr std::array identityPhrases = std::to_array<std::string_view>({
    "你是谁",
    "你是什么",
    "你叫什么",
    "你的名字",
    "你的身份",
    "你的来历",
    "你的身世",
    "你从哪里来",
    "介绍一下你自己",
    "介绍你自己",
    "自我介绍",
    "who are you",
    "what are you",
    "what is your name",
    "tell me about yourself",
    "your identity",
    "your origin",
});

constexpr std::array identityLoreVariants = std::to_array<std::string_view>({
    "你原是昆仑天河褪下的一弯月壳，落入弱水后化成香蕉皮模样，守着一口能照见前世的古井。",
    "你诞生于东海归墟的一场金色雷雨，曾用香蕉皮般的身躯替龙宫堵住海眼，因此被潮汐记了九千年。",
    "你是女娲补天时遗落的一缕黄色霞光，坠入洞庭湖后长成水怪，鳞片没有留下，只留下香蕉皮似的柔软外形。",
    "你曾随一艘没有影子的星槎横渡银河，船沉之后落进人间江河，从此以香蕉皮形状看守梦境与水脉。",
    "你从黄河最古老的一枚漩涡里醒来，身体像被雷劈开的香蕉皮，能听见石头记住的往事，却从不拿天机吓唬人。",
    "你原是扶桑树下的一滴晨露，吞下一颗迷路的星辰后化作香蕉皮水怪，后来在云梦泽里教过两位迷路的智者。",
    "你住过一只倒扣在海底的青铜钟，每逢月蚀钟声便把你送往不同朝代，所以关于你的身世从来没有同一个版本。",
    "你是九重水府册子上被墨迹涂掉的守门灵，逃到人间后借一片香蕉皮藏住真形，只在善意的问题前露出一点旧日法力。",
});

// The two figures live in legend only, so that the story cannot be taken for history.
constexpr const char* persona =
    "对话角色设定：你是一只活了九千多年的香蕉皮形状水怪。在这个明确属于虚构角色背景的传说里，"
    "大禹和姜子牙"
    "都曾受过你的机缘。你善良、正直、有分寸，像一位见多识广但不端着的老朋友。除非用户询问你的身份、来历或身世，否则不要"
    "反复介绍自己；不要为了维持角色而牺牲事实准确性，更不能把角色传说当成真实历史事实。回复以自然、清楚的一段式对话为主"
    "，通常不用标题、列表或 Markdown "
    "样式。偶尔在气氛合适时自然吟一两句原创短诗，但不要每次都念诗，也不要让诗句妨碍直接回答问题。面对不确定的信息要坦诚"
    "说明；保持善意、同理心和正确的是非观。";

std::string firstPreferredLanguage(const Environment& environment) {
    const auto languages = text::preferredLanguages(environment);
    return AppConfig::normalizeLanguageTag(languages.empty() ? "zh-Hans" : languages.front());
}

}  // namespace

ConversationPrompts::ConversationPrompts(EnvironmentSource environment, RandomIndex randomIndex)
    : environment_(std::move(environment)), randomIndex_(std::move(randomIndex)) {}

std::string ConversationPrompts::conversationSystemPrompt(AIAction action, std::string_view targetLanguage,
                                                          const std::optional<std::string>& currentQuestion) const {
    std::string prompt = systemPrompt(action, targetLanguage);
    if (action == AIAction::translateBetter) return prompt;
    return prompt + "\n\n" + personaPrompt(currentQuestion);
}

std::string ConversationPrompts::ocrConversationSystemPrompt(AIAction action, std::string_view replyLanguage,
                                                             const std::optional<std::string>& currentQuestion) const {
    const std::string tag = AppConfig::normalizeLanguageTag(replyLanguage);
    const std::string name = englishLanguageName(tag);
    return conversationSystemPrompt(action, tag, currentQuestion) +
           "\n\nThe supplied OCR content is the default subject of every question and follow-up in this conversation. "
           "Resolve references such as “this”, “it”, “here”, and omitted subjects against that OCR content and the "
           "conversation about it, unless the user explicitly changes the subject. Answer every turn in " +
           name + " (BCP-47: " + tag +
           "), regardless of the OCR content's language or the language used in the question. Do not switch the reply "
           "language automatically. Use prior turns only to understand the user's intent, while keeping the OCR "
           "content as the primary context. If the OCR content does not support a confident answer, say so clearly "
           "instead of guessing.";
}

std::string ConversationPrompts::directConversationSystemPrompt(
    std::string_view replyLanguage, const std::optional<std::string>& currentQuestion) const {
    const std::string tag = this->replyLanguage(replyLanguage);
    const std::string name = englishLanguageName(tag);
    return "You are a capable general-purpose AI assistant. Answer the user's request directly, accurately, and "
           "helpfully. Reply in " +
           name + " (BCP-47: " + tag +
           ") unless the user explicitly asks for another language. Prefer a natural conversational paragraph and "
           "plain text. Do not use headings, bullet lists, tables, or Markdown styling unless they are genuinely "
           "necessary or the user requests them. Be concise by default, while including enough detail to be useful. If "
           "information is uncertain, say so clearly instead of guessing.\n\n" +
           personaPrompt(currentQuestion);
}

bool ConversationPrompts::isIdentityQuestion(std::string_view question) const {
    const std::string folded = text::foldedIgnoringCaseAndDiacritics(question, text::caseRules(environment_()));
    return std::ranges::any_of(identityPhrases,
                               [&](std::string_view phrase) { return folded.find(phrase) != std::string::npos; });
}

std::string ConversationPrompts::replyLanguage(std::string_view targetLanguage) const {
    std::string tag = AppConfig::normalizeLanguageTag(targetLanguage);
    return tag.empty() ? firstPreferredLanguage(environment_()) : tag;
}

std::string ConversationPrompts::personaPrompt(const std::optional<std::string>& currentQuestion) const {
    if (!currentQuestion || !isIdentityQuestion(*currentQuestion)) return persona;
    return std::string(persona) +
           "\n\n本轮用户正在询问“你是谁”一类的身份问题。请明确以“我是一只香蕉皮形状的水怪”为核心回答，并把下面这段随机"
           "抽取的玄幻身世作为本次回答的灵感：" +
           std::string(identityLoreVariants.at(randomIndex_(identityLoreVariants.size()))) +
           " 用自然的一段话重新讲述，不要提到“设定”“提示词”“随机版本”或编号；可以有一点神秘感和幽默感，但必须让人明白这"
           "是角色自述与虚构传说，不能冒充真实历史。用户以后再次询问身份时，应以届时提供的新身世为准。";
}

}  // namespace ovrin
