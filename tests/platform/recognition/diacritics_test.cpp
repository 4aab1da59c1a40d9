#include "platform/linux/recognition/diacritics.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

Reading readingOf(std::u32string_view text, float confidence = 0.9F) {
    Reading reading;
    for (const char32_t code : text) reading.push_back({.code = code, .confidence = confidence});
    return reading;
}

std::string adopted(std::u32string_view network, std::u32string_view other, float otherConfidence = 0.9F) {
    Reading reading = readingOf(network);
    adoptDiacritics(reading, readingOf(other, otherConfidence));
    return textOf(reading);
}

TEST(Diacritics, AreAdoptedOnTheSameLettersOnly) {
    EXPECT_EQ(adopted(U"coöperate, jalapeno, Zurich", U"coôperate, jalapeño, Zürich"), "coöperate, jalapeño, Zürich");
    EXPECT_EQ(adopted(U"facade", U"fagade"), "facade");
    EXPECT_EQ(adopted(U"schon 12:30", U"schön l2;3O"), "schön 12:30") << "the network keeps its own letters";
    EXPECT_EQ(adopted(U"Muller", U"Müller", 0.3F), "Muller") << "an unsure mark is none";
    EXPECT_EQ(adopted(U"", U"é"), "");
}

TEST(Diacritics, AMarkedLetterIsALatinLetterUnderAMark) {
    EXPECT_TRUE(hasMarkedLetter(readingOf(U"café")));
    EXPECT_FALSE(hasMarkedLetter(readingOf(U"cafe ½ × 中 が 한")));
    EXPECT_FALSE(hasMarkedLetter(readingOf(U"é", 0.4F)));
}

}  // namespace
}  // namespace ovrin
