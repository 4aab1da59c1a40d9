#include "base/geometry.h"

#include <gtest/gtest.h>

namespace ovrin {
namespace {

TEST(Geometry, WindowSpaceGrowsUpFromThePrimaryDisplaysLowerLeftCorner) {
    EXPECT_EQ(toWindowSpace(DisplayRect{100, 960, 50, 20}, 1080), (WindowRect{100, 100, 50, 20}));
    // Above and left of the primary display.
    EXPECT_EQ(toWindowSpace(DisplayRect{-200, -40, 50, 20}, 1080), (WindowRect{-200, 1100, 50, 20}));
    EXPECT_EQ(toDisplaySpace(WindowPoint{-200, 1100}, 1080), (DisplayPoint{-200, -20}));
}

TEST(Geometry, APartOfAPictureIsTurnedOverOntoTheView) {
    const LocalRect frame{10, 20, 200, 100};
    EXPECT_EQ(toLocalSpace(UnitRect{0.25, 0.5, 0.5, 0.25}, frame), (LocalRect{60, 45, 100, 25}));
    EXPECT_EQ(toLocalSpace(UnitRect{0, 0, 1, 1}, frame), frame);
}

TEST(Geometry, RectanglesThatOnlyTouchShareNothing) {
    const PixelRect part{10, 10, 20, 20};
    EXPECT_EQ(intersection(part, {20, 0, 40, 15}), (PixelRect{20, 10, 10, 5}));
    EXPECT_TRUE(intersection(part, {30, 10, 5, 5}).isEmpty());
    EXPECT_TRUE(intersection(part, {100, 100, 5, 5}).isEmpty());
    EXPECT_TRUE(part.contains({10, 29}));
    EXPECT_FALSE(part.contains({30, 29}));
}

}  // namespace
}  // namespace ovrin
