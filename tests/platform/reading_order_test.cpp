#include "platform/reading_order.h"

#include <gtest/gtest.h>

namespace ovrin {
namespace {

using Rows = std::vector<TextRow>;

TEST(ReadingOrderTest, RowsRunFromTopToBottomAndTheirPiecesFromLeftToRight) {
    const std::vector<PixelRect> boxes = {{200, 52, 80, 16}, {20, 100, 60, 16}, {20, 50, 60, 18}, {20, 10, 120, 16}};
    EXPECT_EQ(readingOrder(boxes), (Rows{{3}, {2, 0}, {1}}));
}

TEST(ReadingOrderTest, FormRowsStayTogetherAcrossWideGaps) {
    const std::vector<PixelRect> boxes = {{20, 20, 60, 16}, {400, 22, 90, 16}, {20, 60, 60, 16}, {400, 62, 40, 16}};
    EXPECT_EQ(readingOrder(boxes), (Rows{{0, 1}, {2, 3}}));
}

TEST(ReadingOrderTest, WellFilledColumnsAreReadOneAfterTheOther) {
    const std::vector<PixelRect> boxes = {
        {20, 20, 290, 16}, {340, 20, 280, 16}, {20, 50, 280, 16}, {340, 50, 290, 16}, {20, 80, 285, 16}};
    EXPECT_EQ(readingOrder(boxes), (Rows{{0}, {2}, {4}, {1}, {3}}));
}

TEST(ReadingOrderTest, LinesSetTightlyAreNotOneRow) {
    const std::vector<PixelRect> boxes = {{20, 20, 200, 18}, {20, 34, 200, 18}, {20, 48, 200, 18}};
    EXPECT_EQ(readingOrder(boxes), (Rows{{0}, {1}, {2}}));
}

TEST(ReadingOrderTest, AHeadingBesideSmallTextIsARowOfItsOwn) {
    const std::vector<PixelRect> boxes = {{20, 20, 300, 60}, {400, 40, 80, 14}, {400, 60, 80, 14}};
    EXPECT_EQ(readingOrder(boxes).size(), 3U);
    EXPECT_TRUE(readingOrder({}).empty());
}

}  // namespace
}  // namespace ovrin
