#include "platform/linux/recognition/reading_choice.h"

#include <gtest/gtest.h>

#include "platform/recognition/synthetic_reading.h"

namespace ovrin {
namespace {

constexpr double height = 20;

// Like the real network: Latin, marks and a few Chinese characters.
bool networkKnows(char32_t character) {
    return character < 0x80 || std::u32string_view(U"，：文件设置").find(character) != std::u32string_view::npos;
}

std::string joined(const Reading& network, const Reading& other) {
    return textOf(joinReadings(network, other, height, networkKnows));
}

TEST(ReadingChoiceTest, InkAwayFromEveryCharacterIsUnexplained) {
    const LinePiece piece = pieceOf({{0, 20}, {24, 44}, {48, 68}, {72, 92}}, 20);
    EXPECT_NEAR(unexplainedInk(readingOf(U"文件设置", 0, 24), piece), 0, 0.01);
    EXPECT_NEAR(unexplainedInk(readingOf(U"文件", 0, 24), piece), 0.5, 0.1);
    EXPECT_EQ(unexplainedInk({}, piece), 1);
    EXPECT_EQ(unexplainedInk({}, pieceOf({}, 20)), 0);
}

TEST(ReadingChoiceTest, CharactersTheNetworkCannotNameAreTheOtherReaders) {
    EXPECT_EQ(joined(readingOf(U"文5", 0, 20), readingOf(U"文ら", 0, 20)), "文ら");
    EXPECT_EQ(joined(readingOf(U"文", 0, 20), readingOf(U"文さ", 0, 20)), "文さ");
    EXPECT_EQ(joined({}, readingOf(U"한국", 0, 20)), "한국");
}

TEST(ReadingChoiceTest, SureReadingsOfTheNetworkStandAgainstCharactersItKnows) {
    EXPECT_EQ(joined(readingOf(U"文件", 0, 20), readingOf(U"文设", 0, 20)), "文件");
    EXPECT_EQ(joined(readingOf(U"文：", 0, 20), readingOf(U"文・", 0, 20)), "文：");
}

TEST(ReadingChoiceTest, LatinWordsAreTheNetworks) {
    Reading network = readingOf(U"nginx", 40, 10);
    const Reading other = [] {
        Reading reading = readingOf(U"로그", 0, 20);
        const Reading garbage = readingOf(U"653[", 40, 12);
        const Reading rest = readingOf(U"는", 92, 20);
        reading.insert(reading.end(), garbage.begin(), garbage.end());
        reading.insert(reading.end(), rest.begin(), rest.end());
        return reading;
    }();
    EXPECT_EQ(joined(network, other), "로그nginx는");
    // A letter far beyond the word is none of it: between them lies what the network couldn't read.
    network.push_back({U'.', 0.98F, 200, 204, 0});
    const Reading far = readingOf(U"명령을실행하세요", 92, 13);
    Reading withFar = other;
    withFar.insert(withFar.end(), far.begin(), far.end());
    EXPECT_NE(joined(network, withFar).find("명령을실행하세요"), std::string::npos);
}

TEST(ReadingChoiceTest, AccentedLettersEndAWord) {
    EXPECT_EQ(joined(readingOf(U"éa", 0, 10), readingOf(U"éa", 0, 10)), "éa");
}

}  // namespace
}  // namespace ovrin
