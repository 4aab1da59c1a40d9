#include "base/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovrin::text {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

constexpr auto general = CaseRules::general;
constexpr auto turkic = CaseRules::turkic;

Environment locales(Environment::Variables variables) {
    return Environment(std::move(variables));
}

TEST(TextTest, EveryMaximalIllFormedSequenceBecomesOneReplacementCharacter) {
    EXPECT_EQ(repairedUtf8("a\xF0\x9F\x98\x80 z"), "a\xF0\x9F\x98\x80 z");
    EXPECT_EQ(repairedUtf8("a\xF0\x9F\x98z"), "a\uFFFDz");          // cut short: one
    EXPECT_EQ(repairedUtf8("\xC0\xAF"), "\uFFFD\uFFFD");            // overlong: each byte
    EXPECT_EQ(repairedUtf8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");  // a surrogate
    EXPECT_EQ(repairedUtf8("\xF4\x90\x80\x80"), std::string("\uFFFD\uFFFD\uFFFD\uFFFD"));
    EXPECT_EQ(repairedUtf8("12345678\x80中\xE4\xB8"), "12345678\uFFFD中\uFFFD");
}

TEST(TextTest, ValidityIsThatOfWellFormedUtf8) {
    EXPECT_TRUE(isValidUtf8(""));
    EXPECT_TRUE(isValidUtf8("plain ASCII that is longer than a machine word, then 中文"));
    EXPECT_FALSE(isValidUtf8("0123456789\xFF"));
    EXPECT_FALSE(isValidUtf8("中\xE4\xB8"));
}

TEST(TextTest, TrimmingTakesWhiteSpaceOfEveryKindFromBothEnds) {
    EXPECT_EQ(trimmed(" \t\r\n\v\f\u0085\u00A0\u2003\u2028\u2029\u3000a b\u3000c\u202F \n"), "a b\u3000c");
    EXPECT_EQ(trimmed("\u3000\u2003\n"), "");
    EXPECT_EQ(trimmed("中文"), "中文");
    EXPECT_EQ(trimmed("\u200B."), "\u200B.");  // a zero-width space is no white space
    EXPECT_EQ(trimmed(" \xA0\x80 "), "\xA0\x80");
    EXPECT_EQ(trimmedBlanks(" \t[DONE] \n"), "[DONE] \n");
}

TEST(TextTest, WhatIsSeenIsReadTowardsTheSideItsLettersRunTo) {
    EXPECT_EQ(inReadingOrder("plain text 12"), "plain text 12");
    EXPECT_EQ(inReadingOrder("مكب ابحرم"), "مرحبا بكم");
    EXPECT_EQ(inReadingOrder("نآلا Firefox حتفا"), "افتح Firefox الآن");
    EXPECT_EQ(inReadingOrder("the word ةكبش alone"), "the word شبكة alone");
}

TEST(TextTest, CanonicalEqualityIgnoresOnlyTheSpelling) {
    EXPECT_TRUE(canonicallyEqual("caf\u00E9", "cafe\u0301"));
    EXPECT_TRUE(canonicallyEqual("\uD55C", "\u1112\u1161\u11AB"));
    EXPECT_TRUE(canonicallyEqual("\u212B", "A\u030A"));
    EXPECT_FALSE(canonicallyEqual("cafe", "caf\u00E9"));
    EXPECT_FALSE(canonicallyEqual("Ａ", "A"));
    EXPECT_FALSE(canonicallyEqual("a", "A"));
}

TEST(TextTest, ContainmentIgnoresCaseButNotDiacriticsOrWidth) {
    EXPECT_TRUE(containsIgnoringCase("The Quick Fox", "QUICK", general));
    EXPECT_TRUE(containsIgnoringCase("ÉCOLE normale", "école", general));
    EXPECT_TRUE(containsIgnoringCase("e\u0301cole", "\u00C9C", general));
    EXPECT_TRUE(containsIgnoringCase("翻译 Hello 世界", "hello 世", general));
    EXPECT_TRUE(containsIgnoringCase("ＡＢＣ", "ａｂ", general));
    EXPECT_TRUE(containsIgnoringCase("\u03A3\u03AF\u03C3\u03C5\u03C6\u03BF\u03C2", "ΣΊΣΥΦΟΣ", general));
    EXPECT_TRUE(containsIgnoringCase("12 \u212A", "k", general));

    EXPECT_FALSE(containsIgnoringCase("résumé", "resume", general));
    EXPECT_FALSE(containsIgnoringCase("ＡＢＣ", "abc", general));
    EXPECT_FALSE(containsIgnoringCase("plain", "中", general));
    EXPECT_FALSE(containsIgnoringCase("word", " word", general));
    EXPECT_TRUE(containsIgnoringCase("anything", "", general));
}

TEST(TextTest, AMatchNeverCutsAUserPerceivedCharacter) {
    EXPECT_FALSE(containsIgnoringCase("e\u0301", "e", general));
    EXPECT_FALSE(containsIgnoringCase("\u00E9", "\u0301", general));
    EXPECT_TRUE(containsIgnoringCase("\u00E9 then e", "E", general));
    EXPECT_FALSE(containsIgnoringCase("\uD55C\uAD6D", "\uD558", general));  // 하 is not in 한국
    EXPECT_FALSE(containsIgnoringCase("👨‍👩‍👧", "👩", general));
    EXPECT_TRUE(containsIgnoringCase("👩👧", "👧", general));
}

TEST(TextTest, TheUsersLocaleDecidesAboutTheDottedI) {
    EXPECT_TRUE(containsIgnoringCase("TITLE", "title", general));
    EXPECT_FALSE(containsIgnoringCase("TITLE", "title", turkic));
    EXPECT_TRUE(containsIgnoringCase("ISPARTA", "ısparta", turkic));
    EXPECT_TRUE(containsIgnoringCase("İzmir", "izmir", turkic));

    EXPECT_EQ(caseRules(locales({{"LANG", "tr_TR.UTF-8"}})), turkic);
    EXPECT_EQ(caseRules(locales({{"LC_ALL", "en_US.UTF-8"}, {"LANG", "tr_TR.UTF-8"}})), general);
    EXPECT_EQ(caseRules(locales({{"LC_CTYPE", "az"}, {"LC_MESSAGES", "en_US"}})), turkic);
    EXPECT_EQ(caseRules(locales({})), general);
}

TEST(TextTest, FoldingDropsCaseAndDiacritics) {
    EXPECT_EQ(foldedIgnoringCaseAndDiacritics("What Is Your NAME?", general), "what is your name?");
    EXPECT_EQ(foldedIgnoringCaseAndDiacritics("Whó Âre Ỳou", general), "who are you");
    EXPECT_EQ(foldedIgnoringCaseAndDiacritics("请介绍一下你自己 \uD55C", general), "请介绍一下你自己 \uD55C");
    EXPECT_EQ(foldedIgnoringCaseAndDiacritics("WHAT IS", turkic), "what ıs");
    EXPECT_EQ(lowercased("ÀB ΑΣ"), "àb ας");
}

TEST(TextTest, HeaderNamesCompareByAsciiLettersOnly) {
    EXPECT_TRUE(equalsIgnoringAsciiCase("X-API-Key", "x-api-KEY"));
    EXPECT_FALSE(equalsIgnoringAsciiCase("x-api-key", "x-api-key "));
    EXPECT_FALSE(equalsIgnoringAsciiCase("É", "é"));
}

TEST(TextTest, CharactersAreCountedAsTheUserPerceivesThem) {
    EXPECT_EQ(characterCount(""), 0U);
    EXPECT_EQ(characterCount("a\nb"), 3U);
    EXPECT_EQ(characterCount("a\r\nb"), 3U);
    EXPECT_EQ(characterCount("中文"), 2U);
    EXPECT_EQ(characterCount("e\u0301"), 1U);
    EXPECT_EQ(characterCount("👨‍👩‍👧🇨🇳🇯🇵"), 3U);
    EXPECT_EQ(characterCount("한\u1112\u1161\u11ABか\u3099"), 3U);
    EXPECT_EQ(characterCount("中文字符很多", 2), 2U);
    EXPECT_EQ(characterCount("e\u0301e\u0301e\u0301", 2), 2U);
}

TEST(TextTest, EnglishNamesCoverWholeIdentifiersFirst) {
    EXPECT_THAT(englishNameOfIdentifier("zh-Hans"), Optional(std::string("Simplified Chinese")));
    EXPECT_THAT(englishNameOfIdentifier("zh-Hant"), Optional(std::string("Traditional Chinese")));
    EXPECT_THAT(englishNameOfIdentifier("en"), Optional(std::string("English")));
    EXPECT_THAT(englishNameOfIdentifier("ja"), Optional(std::string("Japanese")));
    EXPECT_THAT(englishNameOfIdentifier("en_GB"), Optional(std::string("British English")));
    EXPECT_EQ(englishNameOfIdentifier("qx"), std::nullopt);
    EXPECT_EQ(englishNameOfIdentifier("qx-Hans"), std::nullopt);
    EXPECT_EQ(englishNameOfIdentifier("fr-x!"), std::nullopt);
    EXPECT_EQ(englishNameOfIdentifier(""), std::nullopt);
    EXPECT_EQ(englishNameOfIdentifier("中文"), std::nullopt);

    EXPECT_THAT(englishNameOfLanguageCode("fr-x!"), Optional(std::string("French")));
    EXPECT_EQ(englishNameOfLanguageCode("klingonish"), std::nullopt);
}

TEST(TextTest, PreferredLanguagesFollowThePrecedenceOfTheCLibrary) {
    EXPECT_THAT(preferredLanguages(locales({{"LANG", "zh_CN.UTF-8"}})), ElementsAre("zh-Hans-CN"));
    EXPECT_THAT(preferredLanguages(locales({{"LANG", "zh_CN"}, {"LC_MESSAGES", "ja_JP"}, {"LC_ALL", ""}})),
                ElementsAre("ja-JP"));
    EXPECT_THAT(preferredLanguages(locales({{"LC_ALL", "zh_TW"}, {"LC_MESSAGES", "ja_JP"}})),
                ElementsAre("zh-Hant-TW"));
    EXPECT_THAT(preferredLanguages(locales({{"LANG", "en_US.UTF-8"}, {"LANGUAGE", "de_AT:zh:de_AT:C:fr"}})),
                ElementsAre("de-AT", "zh-Hans"));
    EXPECT_THAT(preferredLanguages(locales({{"LANG", "C"}, {"LANGUAGE", "de"}})), IsEmpty());
    EXPECT_THAT(preferredLanguages(locales({{"LANGUAGE", "de"}})), IsEmpty());
    EXPECT_THAT(preferredLanguages(locales({{"LANG", "C.UTF-8"}})), IsEmpty());
    EXPECT_THAT(preferredLanguages(locales({{"LANG", "sr_RS@latin"}})), ElementsAre("sr-Latn-RS"));
    EXPECT_THAT(preferredLanguages(locales({{"LANG", "../etc/zh"}})), IsEmpty());
}

}  // namespace
}  // namespace ovrin::text
