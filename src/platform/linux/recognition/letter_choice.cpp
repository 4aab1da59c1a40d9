#include "platform/linux/recognition/letter_choice.h"

#include <string_view>

#include <unicode/uchar.h>

#include "base/script.h"

namespace ovrin {
namespace {

// The reader hesitates when its second choice has at least this share of the first one's probability.
constexpr float hesitation = 1.0F / 3;

bool isOneOf(char32_t character, std::u32string_view set) {
    return set.find(character) != std::u32string_view::npos;
}

// Do its neighbours (0 at a line's end) speak for this character?
bool fits(char32_t character, char32_t before, char32_t after) {
    const Script left = scriptOf(before);
    const Script right = scriptOf(after);
    // Small kana make one syllable with what stands before them.
    if (isOneOf(character, U"ゃゅょャュョ")) return isOneOf(before, U"きぎしじちにひびぴみりキギシジチニヒビピミリ");
    if (isOneOf(character, U"っッー")) return left == Script::kana;
    if (scriptOf(character) == Script::digit)
        return left != Script::latin && right != Script::latin && (left == Script::digit || right == Script::digit);
    // Names in programs mix cases and digits at will: only capitals on both sides tell something.
    const auto isUpper = [](char32_t letter) { return u_isupper(static_cast<UChar32>(letter)) != 0; };
    return isUpper(character) && isUpper(before) && isUpper(after);
}

// Of the marks that have a narrow and a wide form; any other character stays as it is.
char32_t wideForm(char32_t character) {
    constexpr std::u32string_view narrow = U",:;!?()";
    constexpr std::u32string_view wide = U"，：；！？（）";
    const auto mark = narrow.find(character);
    return mark == std::u32string_view::npos ? character : wide[mark];
}

}  // namespace

void chooseByNeighbours(Reading& reading) {
    for (std::size_t i = 0; i < reading.size(); ++i) {
        auto& character = reading[i];
        if (character.secondConfidence < hesitation * character.confidence) continue;
        const char32_t before = i == 0 ? 0 : reading[i - 1].code;
        const char32_t after = i + 1 == reading.size() ? 0 : reading[i + 1].code;
        if (fits(character.second, before, after) && !fits(character.code, before, after))
            character.code = character.second;
    }
}

void widenMarksByGaps(Reading& reading, double em) {
    constexpr double blankOfMark = 0.42;  // ems; a space beside a narrow mark leaves about 0.3
    constexpr double blankOfBrace = 0.5;
    ReadCharacter* open = nullptr;
    for (std::size_t i = 0; i < reading.size(); ++i) {
        auto& character = reading[i];
        const bool opens = character.code == U'(' || character.code == U'（';
        const bool closes = character.code == U')' || character.code == U'）';
        const double before = i == 0 ? 0 : (character.left - reading[i - 1].right) / em;
        const double after = i + 1 == reading.size() ? 0 : (reading[i + 1].left - character.right) / em;
        const bool beside =
            (i > 0 && isEastAsian(reading[i - 1].code)) || (i + 1 < reading.size() && isEastAsian(reading[i + 1].code));
        const double blank = opens ? before : after;
        if (beside && blank > (opens || closes ? blankOfBrace : blankOfMark)) character.code = wideForm(character.code);
        // Braces are of one width.
        if (closes && open != nullptr && (open->code == U'（' || character.code == U'）')) {
            open->code = U'（';
            character.code = U'）';
        }
        open = opens ? &character : closes ? nullptr : open;
    }
}

}  // namespace ovrin
