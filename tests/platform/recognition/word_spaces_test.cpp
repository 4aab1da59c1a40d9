#include "platform/linux/recognition/word_spaces.h"

#include <gtest/gtest.h>

#include "platform/linux/recognition/glyph_places.h"
#include "platform/recognition/synthetic_reading.h"

namespace ovrin {
namespace {

// Reads `text` off bars of ink that start at the given columns, and puts the spaces.
std::string spaced(std::u32string_view text, const std::vector<ColumnRun>& runs, int height) {
    std::vector<LinePiece> pieces = {pieceOf(runs, height)};
    Reading& reading = pieces.front().reading;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // Readers are off by a few pixels.
        reading.push_back({text[i], 0.99F, runs[i].left - 2.0, runs[i].right + 1.0, 0});
    }
    placeOnInk(reading, pieces.front());
    placeSpaces(pieces);
    return textOf(reading);
}

TEST(WordSpacesTest, WideGapsBetweenLettersAreSpaces) {
    EXPECT_EQ(spaced(U"abcd", {{0, 8}, {9, 17}, {24, 32}, {33, 41}}, 15), "ab cd");
}

TEST(WordSpacesTest, KoreanWordsAreToldByNarrowerGaps) {
    EXPECT_EQ(spaced(U"새문서", {{0, 14}, {19, 33}, {35, 49}}, 16), "새 문서");
}

TEST(WordSpacesTest, NarrowLettersOfAFixedWidthFontAreNoWords) {
    // Cells of 9 pixels, the letters in their middle; one empty cell after the fifth.
    std::vector<ColumnRun> runs;
    const std::u32string_view text = U"il.:iabcil:x";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int center = static_cast<int>(i + (i >= 5 ? 1 : 0)) * 9 + 4;
        const bool narrow = std::u32string_view(U"il.:").find(text[i]) != std::u32string_view::npos;
        runs.push_back(narrow ? ColumnRun{center - 1, center + 1} : ColumnRun{center - 3, center + 4});
    }
    EXPECT_EQ(spaced(text, runs, 14), "il.:i abcil:x");
}

TEST(WordSpacesTest, WidePunctuationBringsItsOwnBlank) {
    EXPECT_EQ(spaced(U"文，件", {{0, 15}, {17, 20}, {34, 49}}, 15), "文，件");
    EXPECT_EQ(spaced(U"第7页", {{0, 15}, {21, 28}, {34, 49}}, 15), "第 7 页");
}

}  // namespace
}  // namespace ovrin
