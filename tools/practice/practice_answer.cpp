#include "practice/practice_answer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "base/text.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

bool isChinese(std::string_view languageTag) {
    return languageTag.starts_with("zh");
}

std::string systemPrompt(std::span<const PracticeMessage> messages) {
    std::string prompt;
    for (const PracticeMessage& message : messages) {
        if (message.role == "system") prompt += message.content + "\n";
    }
    return prompt;
}

// The last language that the prompts name by its tag; English when they name none.
std::string answerLanguage(std::string_view prompt) {
    constexpr std::string_view introduction = "(BCP-47: ";
    const std::size_t at = prompt.rfind(introduction);
    if (at == std::string_view::npos) return "en";
    const std::string_view rest = prompt.substr(at + introduction.size());
    return std::string(rest.substr(0, rest.find(')')));
}

std::string lastQuestion(std::span<const PracticeMessage> messages) {
    const auto found = std::find_if(messages.rbegin(), messages.rend(),
                                    [](const PracticeMessage& message) { return message.role == "user"; });
    return found == messages.rend() ? std::string() : found->content;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

std::string translatedLine(std::string_view line, std::string_view languageTag) {
    if (text::trimmed(line).empty()) return std::string(line);
    if (const auto translation = pageTranslation(line, languageTag)) return *translation;
    return (isChinese(languageTag) ? "〔未收录〕" : "[not known] ") + std::string(line);
}

std::string translation(std::string_view source, std::string_view languageTag) {
    std::string answer;
    for (const std::string_view line : linesOf(source)) answer += translatedLine(line, languageTag) + "\n";
    answer.pop_back();
    return answer;
}

std::string_view practiceName(std::string_view languageTag) {
    return isChinese(languageTag) ? "【练习服务】" : "[practice service] ";
}

std::string echo(std::string_view question, std::string_view languageTag) {
    const std::string name(practiceName(languageTag));
    if (isChinese(languageTag)) return name + "这里没有模型，只能把收到的内容原样送回：\n" + std::string(question);
    return name + "There is no model here; this is what was received:\n" + std::string(question);
}

bool isScriptWithoutSpaces(UChar32 character) {
    const auto width = static_cast<UEastAsianWidth>(u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH));
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH;
}

}  // namespace

std::string practiceAnswer(std::span<const PracticeMessage> messages) {
    const std::string prompt = systemPrompt(messages);
    const std::string languageTag = answerLanguage(prompt);
    const bool translates = prompt.find("translator") != std::string::npos;
    return translates ? translation(lastQuestion(messages), languageTag) : echo(lastQuestion(messages), languageTag);
}

std::vector<std::string> practicePieces(std::string_view answer) {
    const auto whole =
        icu::UnicodeString::fromUTF8(icu::StringPiece(answer.data(), static_cast<std::int32_t>(answer.size())));
    std::vector<std::string> pieces;
    icu::UnicodeString piece;
    const auto finishPiece = [&] {
        if (piece.isEmpty()) return;
        piece.toUTF8String(pieces.emplace_back());
        piece.remove();
    };
    for (std::int32_t at = 0; at < whole.length(); at = whole.moveIndex32(at, 1)) {
        const UChar32 character = whole.char32At(at);
        piece.append(character);
        const bool isFull = isScriptWithoutSpaces(character) ? piece.countChar32() >= 2 : u_isspace(character) != 0;
        if (isFull) finishPiece();
    }
    finishPiece();
    return pieces;
}

}  // namespace ovrin
