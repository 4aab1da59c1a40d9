// What is decided about a reading from its own evidence: hesitation, marks of user interfaces, ink without a character.
#include <gtest/gtest.h>

#include "platform/linux/recognition/control_marks.h"
#include "platform/linux/recognition/letter_choice.h"
#include "platform/linux/recognition/other_script.h"
#include "platform/recognition/synthetic_reading.h"

namespace ovrin {
namespace {

// The text, its character at `position` read with half of the probability of what it is and half of `second`.
std::string chosen(std::u32string_view text, std::size_t position, char32_t second) {
    Reading reading = readingOf(text, 0, 10);
    reading[position].confidence = 0.5F;
    reading[position].second = second;
    reading[position].secondConfidence = 0.45F;
    chooseByNeighbours(reading);
    return textOf(reading);
}

TEST(LetterChoiceTest, NeighboursDecideWhereTheReaderHesitates) {
    EXPECT_EQ(chosen(U"2O24", 1, U'0'), "2024");
    EXPECT_EQ(chosen(U"HTMlX", 3, U'I'), "HTMIX");
    EXPECT_EQ(chosen(U"ネットワ-ク", 4, U'ー'), "ネットワーク");
    EXPECT_EQ(chosen(U"キヤプチャ", 1, U'ャ'), "キャプチャ");
    EXPECT_EQ(chosen(U"かつた", 1, U'っ'), "かった");
    // Where they don't tell, the first choice stays.
    EXPECT_EQ(chosen(U"deadb0ef", 5, U'o'), "deadb0ef");
    EXPECT_EQ(chosen(U"LinkedIn", 6, U'l'), "LinkedIn");
    EXPECT_EQ(chosen(U"a-b", 1, U'ー'), "a-b");
}

TEST(LetterChoiceTest, WhatTheReaderIsSureOfStays) {
    for (const auto* text :
         {U"LinkedIn", U"parseInt", U"userId", U"getInstance", U"HCl", U"McIntyre", U"deadb0ef", U"file0name"}) {
        Reading reading = readingOf(text, 0, 10);
        for (auto& character : reading) {
            character.second = U'l';
            character.secondConfidence = 0.1F;
        }
        const std::string before = textOf(reading);
        chooseByNeighbours(reading);
        EXPECT_EQ(textOf(reading), before);
    }
}

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
