#include "platform/linux/recognition/letter_choice.h"

#include <string_view>

#include <unicode/uchar.h>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

// The reader hesitates when its second choice has at least this share of the first one's probability.
constexpr float hesitation = 1.0F / 3;

bool isOneOf(char32_t character, std::u32string_view set) {
    return set.find(character) != std::u32string_view::npos;
}
bool isLetter(char32_t character) {
    return scriptOf(character) == Script::latin;
}
bool isUpper(char32_t character) {
    return u_isupper(static_cast<UChar32>(character)) != 0;
}
bool isDigit(char32_t character) {
    return character >= U'0' && character <= U'9';
}
bool isKana(char32_t character) {
    return scriptOf(character) == Script::kana;
}

// How well a character fits between its neighbours (0 at a line's end): 1 well, -1 badly, 0 neither.
int fit(char32_t character, char32_t before, char32_t after) {
    const bool amongDigits = (isDigit(before) || isDigit(after)) && !isLetter(before) && !isLetter(after);
    if (isOneOf(character, U"01")) return amongDigits ? 1 : 0;
    // Names in programs mix cases and digits at will: only capitals on both sides tell something.
    if (isOneOf(character, U"OI")) return amongDigits ? -1 : isUpper(before) && isUpper(after) ? 1 : 0;
    if (isOneOf(character, U"ol")) return amongDigits || (isUpper(before) && isUpper(after)) ? -1 : 0;
    if (isOneOf(character, U"-—一|")) return isKana(before) ? -1 : 0;
    if (character == U'ー') return isKana(before) ? 1 : -1;
    // Small kana make one syllable with what stands before them.
    if (isOneOf(character, U"ゃゅょャュョ"))
        return isOneOf(before, U"きぎしじちにひびぴみりキギシジチニヒビピミリ") ? 1 : -1;
    if (isOneOf(character, U"っッ"))
        return isKana(before) &&
                       isOneOf(after,
                               U"かきくけこさしすせそたちつてとぱぴぷぺぽカキクケコサシスセソタチツテトパピプペポドグ")
                   ? 1
                   : -1;
    return 0;
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
        if (fit(character.second, before, after) > fit(character.code, before, after))
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
