#include "platform/linux/recognition/diacritics.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

constexpr float surelyMarked = 0.6F;  // confidence of the reader that knows the mark

// The letter under all its marks; the character itself where there are none.
char32_t bareLetter(char32_t character) {
    if (character < 0x80) return character;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decomposition = icu::Normalizer2::getNFDInstance(status);
    icu::UnicodeString parts;
    if (U_FAILURE(status) || !decomposition->getDecomposition(static_cast<UChar32>(character), parts)) return character;
    return static_cast<char32_t>(parts.char32At(0));
}

bool isMarkedLetter(char32_t character) {
    if (character < 0x80) return false;
    const char32_t bare = bareLetter(character);
    return bare < 0x80 && scriptOf(bare) == Script::latin;
}

}  // namespace

bool hasMarkedLetter(const Reading& reading) {
    return std::any_of(reading.begin(), reading.end(), [](const ReadCharacter& character) {
        return isMarkedLetter(character.code) && character.confidence >= surelyMarked;
    });
}

void adoptDiacritics(Reading& reading, const Reading& other) {
    // The longest common subsequence of bare letters, counted from the end so that the way back runs forwards.
    const std::size_t columns = other.size() + 1;
    std::vector<std::size_t> common((reading.size() + 1) * columns, 0);
    const auto isSame = [&](std::size_t i, std::size_t j) {
        return bareLetter(reading[i].code) == bareLetter(other[j].code);
    };
    for (std::size_t i = reading.size(); i-- > 0;) {
        for (std::size_t j = other.size(); j-- > 0;) {
            common[i * columns + j] = isSame(i, j)
                                          ? common[(i + 1) * columns + j + 1] + 1
                                          : std::max(common[(i + 1) * columns + j], common[i * columns + j + 1]);
        }
    }
    for (std::size_t i = 0, j = 0; i < reading.size() && j < other.size();) {
        if (isSame(i, j)) {
            const bool isNew = reading[i].code < 0x80 && isMarkedLetter(other[j].code);
            if (isNew && other[j].confidence >= surelyMarked) reading[i].code = other[j].code;
            ++i;
            ++j;
        } else if (common[(i + 1) * columns + j] >= common[i * columns + j + 1]) {
            ++i;
        } else {
            ++j;
        }
    }
}

}  // namespace ovrin
