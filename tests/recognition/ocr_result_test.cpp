#include "recognition/ocr_result.h"

#include <chrono>
#include <unordered_set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/error.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using DateForm = OCRResult::DateForm;

const Timestamp moment = std::chrono::sys_days{std::chrono::year{2026} / 3 / 1} + 9h + 5min + 7s + 123456us;

OCRParagraph paragraph(std::string text, UnitRect box = {0.1, 0.2, 0.3, 0.4}) {
    return {.text = std::move(text), .confidence = 0.9F, .normalizedBoundingBox = box};
}

OCRResult sample() {
    return {.paragraphs = {paragraph("早上好"), paragraph("a\nb")}, .detectedLanguage = "zh-Hans", .createdAt = moment};
}

json::Value reread(const nlohmann::ordered_json& written) {
    return json::parseOrThrow(written.dump());
}

TEST(OCRParagraph, IdWritesTheOriginInShortestDecimals) {
    EXPECT_EQ(paragraph("abc", {0.5, 0.25, 1, 1}).id(), "0.5-0.25-abc");
    EXPECT_EQ(paragraph("", {0, 0.00001, 1, 1}).id(), "0.0-1e-05-");
}

TEST(OCRParagraph, ABoxTurnedOverIsTheSameBox) {
    const auto upright = paragraph("abc", {0.25, 0.25, 0.5, 0.5});
    const auto turned = paragraph("abc", {0.75, 0.75, -0.5, -0.5});
    EXPECT_EQ(upright, turned);
    EXPECT_EQ((std::unordered_set<OCRParagraph>{upright, turned}).size(), 1U);
    EXPECT_NE(upright, paragraph("abc", {0.75, 0.75, 0.5, 0.5}));
    auto unsure = upright;
    unsure.confidence = 0.5F;
    EXPECT_NE(upright, unsure);
}

TEST(OCRResult, FullTextJoinsParagraphsWithOneLineFeed) {
    EXPECT_EQ(OCRResult{}.fullText(), "");
    EXPECT_EQ((OCRResult{.paragraphs = {paragraph(" a ")}}.fullText()), " a ");
    EXPECT_EQ((OCRResult{.paragraphs = {paragraph(""), paragraph("a\nb"), paragraph("")}}.fullText()), "\na\nb\n");
}

TEST(OCRResult, SerialisesWithFixedKeysInOrderAndShortNumbers) {
    EXPECT_EQ(sample().toJson(DateForm::iso8601).dump(),
              R"({"paragraphs":[{"text":"早上好","confidence":0.9,"normalizedBoundingBox":[[0.1,0.2],[0.3,0.4]]},)"
              R"({"text":"a\nb","confidence":0.9,"normalizedBoundingBox":[[0.1,0.2],[0.3,0.4]]}],)"
              R"("detectedLanguage":"zh-Hans","createdAt":"2026-03-01T09:05:07Z"})");
    const OCRResult bare{.createdAt = std::chrono::sys_days{std::chrono::year{2001} / 1 / 2}};
    EXPECT_EQ(bare.toJson(DateForm::secondsSinceReferenceDate).dump(), R"({"paragraphs":[],"createdAt":86400.0})");
}

TEST(OCRResult, ReadsBackEqualInTheFormItWasWritten) {
    auto result = sample();
    EXPECT_EQ(OCRResult::fromJson(reread(result.toJson(DateForm::secondsSinceReferenceDate)),
                                  DateForm::secondsSinceReferenceDate),
              result);
    result.detectedLanguage.reset();
    result.createdAt = std::chrono::floor<std::chrono::seconds>(moment);
    EXPECT_EQ(OCRResult::fromJson(reread(result.toJson(DateForm::iso8601)), DateForm::iso8601), result);
}

TEST(OCRResult, ReadingRefusesMissingAndMalformedMembers) {
    const auto good = reread(sample().toJson(DateForm::iso8601));
    const auto refuses = [](const json::Value& json) {
        EXPECT_THROW(OCRResult::fromJson(json, DateForm::iso8601), Error) << json;
    };
    for (const char* key : {"paragraphs", "createdAt"}) {
        auto json = good;
        json.erase(key);
        refuses(json);
    }
    for (const char* key : {"text", "confidence", "normalizedBoundingBox"}) {
        auto json = good;
        json["paragraphs"][1].erase(key);
        refuses(json);
    }
    for (const char* patch : {R"({"createdAt": 5})", R"({"createdAt": "yesterday"})", R"({"detectedLanguage": 1})",
                              R"({"paragraphs": {}})", R"({"paragraphs": [1]})"}) {
        auto json = good;
        json.merge_patch(json::parseOrThrow(patch));
        refuses(json);
    }
    for (const char* box : {"[]", "[1, 2, 3, 4]", "[[1, 2]]", "[[1, 2], [3]]", R"([[1, 2], ["3", 4]])"}) {
        auto json = good;
        json["paragraphs"][0]["normalizedBoundingBox"] = json::parseOrThrow(box);
        refuses(json);
    }
    refuses(json::parseOrThrow("[]"));
    auto json = good;
    json["paragraphs"][0]["confidence"] = 1e300;
    refuses(json);
    EXPECT_THROW(OCRResult::fromJson(json::parseOrThrow(R"({"paragraphs": [], "createdAt": 1e300})"),
                                     DateForm::secondsSinceReferenceDate),
                 Error);
}

}  // namespace
}  // namespace ovrin
