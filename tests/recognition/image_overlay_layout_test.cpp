#include "recognition/image_overlay_layout.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovrin::overlay {
namespace {

using Lines = std::vector<std::string>;

TEST(ImageOverlayLayout, FitsThePictureIntoTheMiddleOfTheView) {
    EXPECT_EQ(imageRectangle({400, 300}, {800, 200}), (LocalRect{0, 100, 400, 100}));
    EXPECT_EQ(imageRectangle({400, 300}, {50, 100}), (LocalRect{125, 0, 150, 300}));
    EXPECT_EQ(imageRectangle({400, 300}, {0, 100}), (LocalRect{0, 0, 400, 300}));
    EXPECT_EQ(imageRectangle({400, 300}, {100, 0}), (LocalRect{0, 0, 400, 300}));
}

TEST(ImageOverlayLayout, KeepsTheFontLegible) {
    EXPECT_EQ(labelFontSize(10), 9);
    EXPECT_DOUBLE_EQ(labelFontSize(20), 12.4);
    EXPECT_EQ(labelFontSize(40), 16);
}

TEST(ImageOverlayLayout, BlankLinesDoNotCount) {
    EXPECT_EQ(translatedLines("a\n\nb\nc\n"), (Lines{"a", "b", "c"}));
    EXPECT_EQ(translatedLines("\n a"), Lines{" a"});
    EXPECT_EQ(translatedLines(""), Lines{""});
    EXPECT_EQ(translatedLines("\n\n"), Lines{"\n\n"});
}

TEST(ImageOverlayLayout, PairsLinesWithParagraphs) {
    const std::vector<OCRParagraph> paragraphs{{.text = "一", .normalizedBoundingBox = {0, 0.75, 0.5, 0.25}},
                                               {.text = "二", .normalizedBoundingBox = {0, 0.25, 0.5, 0.5}},
                                               {.text = "三", .normalizedBoundingBox = {0.5, 0, 0.5, 0.125}}};
    const LocalRect picture{100, 0, 80, 40};
    EXPECT_EQ(labels(picture, paragraphs, "one\n\ntwo"),
              (std::vector<Label>{{.text = "one", .frame = {100, 0, 40, 10}, .fontSize = 9},
                                  {.text = "two", .frame = {100, 10, 40, 20}, .fontSize = 20 * 0.62},
                                  {.text = "三", .frame = {140, 35, 40, 5}, .fontSize = 9}}));
    const auto untranslated = labels(picture, paragraphs, "");
    EXPECT_EQ(untranslated[0].text, "");
    EXPECT_EQ(untranslated[1].text, "二");
    EXPECT_TRUE(labels(picture, {}, "one").empty());
}

}  // namespace
}  // namespace ovrin::overlay
