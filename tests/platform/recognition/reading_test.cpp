// What is decided about a reading from its own evidence: marks of user interfaces, ink without a character.
#include <gtest/gtest.h>

#include "platform/linux/recognition/control_marks.h"
#include "platform/linux/recognition/other_script.h"
#include "platform/recognition/synthetic_reading.h"

namespace ovrin {
namespace {

// A mark of ten pixels, a gap, and a word of the same height.
std::string besideAWord(char32_t mark, float confidence, int gap) {
    LinePiece piece = pieceOf({{0, 10}, {10 + gap, 26 + gap}, {26 + gap, 42 + gap}}, 16);
    piece.ink = 255;
    piece.reading = {{mark, confidence, 0, 10, 0}};
    for (const auto& character : readingOf(U"设置", 10 + gap, 16)) piece.reading.push_back(character);
    removeControlMarks(piece);
    return textOf(piece.reading);
}

TEST(ControlMarksTest, DrawnThingsAndDoubtfulOnesBesideAWordAreNoText) {
    EXPECT_EQ(besideAWord(U'□', 0.99F, 8), "设置");
    EXPECT_EQ(besideAWord(U'★', 0.99F, 8), "设置");
    EXPECT_EQ(besideAWord(U'Q', 0.98F, 14), "设置");
    EXPECT_EQ(besideAWord(U'当', 0.5F, 8), "设置");
    EXPECT_EQ(besideAWord(U'新', 0.99F, 2), "新设置");
    EXPECT_EQ(besideAWord(U'5', 0.99F, 8), "5设置");
}

TEST(ControlMarksTest, ALetterAloneIsText) {
    for (const char32_t character : {U'A', U'I', U'一', U'文', U'5'}) {
        LinePiece piece = pieceOf({{0, 10}}, 16);
        piece.reading = {{character, 0.98F, 0, 10, 0}};
        removeControlMarks(piece);
        EXPECT_EQ(piece.reading.size(), 1U) << static_cast<unsigned>(character);
    }
}

TEST(OtherScriptTest, InkAwayFromEveryCharacterIsUnexplained) {
    const LinePiece piece = pieceOf({{0, 20}, {24, 44}, {48, 68}, {72, 92}}, 20);
    EXPECT_NEAR(unexplainedInk(readingOf(U"文件设置", 0, 24), piece, {0, 92}), 0, 0.01);
    EXPECT_NEAR(unexplainedInk(readingOf(U"文件", 0, 24), piece, {0, 92}), 0.5, 0.1);
    EXPECT_NEAR(unexplainedInk(readingOf(U"文件", 0, 24), piece, {48, 92}), 1, 0.1);
    EXPECT_EQ(unexplainedInk({}, pieceOf({}, 20), {0, 92}), 0);
}

}  // namespace
}  // namespace ovrin
