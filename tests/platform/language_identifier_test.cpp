#include "platform/linux/language_identifier.h"

#include <gtest/gtest.h>

namespace ovrin {
namespace {

std::string languageOf(std::string_view text) {
    return LinuxLanguageIdentifier().dominantLanguage(text).value_or("none");
}

TEST(LanguageIdentifierTest, TellsEastAsianLanguagesByTheirScripts) {
    EXPECT_EQ(languageOf("こんにちは"), "ja");
    EXPECT_EQ(languageOf("検索する"), "ja");
    EXPECT_EQ(languageOf("안녕"), "ko");
    EXPECT_EQ(languageOf("简体中文"), "zh-Hans");
    EXPECT_EQ(languageOf("繁體中文"), "zh-Hant");
    EXPECT_EQ(languageOf("你好"), "zh-Hans");
}

TEST(LanguageIdentifierTest, ChineseWithLatinNamesIsChinese) {
    EXPECT_EQ(languageOf("iPhone 手机"), "zh-Hans");
    EXPECT_EQ(languageOf("接口返回 HTTP 429（Too Many Requests）时请稍后重试。"), "zh-Hans");
    EXPECT_EQ(languageOf("The word 手机 means mobile phone in Chinese, and is used everywhere."), "en");
}

TEST(LanguageIdentifierTest, TellsShortTextsOfOtherScripts) {
    EXPECT_EQ(languageOf("Hello"), "en");
    EXPECT_EQ(languageOf("Save changes?"), "en");
    EXPECT_EQ(languageOf("Bonjour le monde"), "fr");
    EXPECT_EQ(languageOf("Guten Morgen"), "de");
    EXPECT_EQ(languageOf("Привет"), "ru");
    EXPECT_EQ(languageOf("Привіт, як справи"), "uk");
    EXPECT_EQ(languageOf("שלום"), "he");
}

TEST(LanguageIdentifierTest, FindsNoneWithoutLettersAndSurvivesMalformedText) {
    EXPECT_EQ(languageOf(""), "none");
    EXPECT_EQ(languageOf("123 + 456 = 579 …"), "none");
    EXPECT_EQ(languageOf("\xff\xfe\x80 Hello world"), "en");
}

}  // namespace
}  // namespace ovrin
