#include "platform/linux/recognition/reading.h"

#include <unicode/unistr.h>

namespace ovrin {

std::string textOf(const Reading& reading) {
    icu::UnicodeString text;
    for (const auto& character : reading) {
        if (character.spaceBefore > 0.5 && !text.isEmpty()) text.append(static_cast<UChar32>(U' '));
        text.append(static_cast<UChar32>(character.code));
    }
    std::string utf8;
    return text.toUTF8String(utf8);
}

double meanConfidence(const Reading& reading) {
    double sum = 0;
    for (const auto& character : reading) sum += character.confidence;
    return reading.empty() ? 0 : sum / static_cast<double>(reading.size());
}

}  // namespace ovrin
