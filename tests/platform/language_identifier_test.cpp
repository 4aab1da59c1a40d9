#include <algorithm>
#include <fstream>
#include <map>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "platform/linux/recognition/linux_language_identifier.h"

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

TEST(LanguageIdentifierTest, TextWithoutEvidenceHasNoLanguage) {
    for (const char* const text : {"xkcd", "QWERTZ", "Zyx", "K2 B4"}) EXPECT_EQ(languageOf(text), "none") << text;
}

struct Told {
    int right = 0;
    int all = 0;
    std::string mistakes{};
};

// Lines "tag: text | text | ...".
std::map<std::string, Told> toldOfTheTable() {
    std::ifstream table(OVRIN_SOURCE_DIR "/tests/platform/language_texts.txt");
    std::map<std::string, Told> told;
    for (std::string line; std::getline(table, line);) {
        if (line.starts_with('#')) continue;
        const std::string tag = line.substr(0, line.find(':'));
        std::string_view rest = std::string_view(line).substr(tag.size() + 2);
        while (!rest.empty()) {
            const std::string_view text = rest.substr(0, rest.find(" | "));
            const std::string language = languageOf(text);
            Told& ofLanguage = told[tag];
            ++ofLanguage.all;
            ofLanguage.right += language == tag ? 1 : 0;
            if (language != tag) ofLanguage.mistakes.append(language).append(": ").append(text).append("\n");
            rest.remove_prefix(std::min(text.size() + 3, rest.size()));
        }
    }
    return told;
}

TEST(LanguageIdentifierTest, TellsShortTextsOfTenLanguages) {
    const auto told = toldOfTheTable();
    EXPECT_EQ(told.size(), 10);
    for (const auto& [tag, found] : told) {
        EXPECT_EQ(found.all, 30) << tag;
        EXPECT_GE(found.right * 100, found.all * (tag == "en" ? 97 : 90)) << tag << "\n" << found.mistakes;
    }
}

TEST(LanguageIdentifierTest, WordsOfOtherLanguagesDoNotOverruleAReliableIdentification) {
    // Each holds words that are frequent in other languages.
    EXPECT_EQ(languageOf("Der Mann, the one in London, will die Stadt am Montag also noch einmal sehen."), "de");
    EXPECT_EQ(languageOf("No me digas que es un as, porque en el plan de hoy no hay nada para mí ni para Ada."), "es");
    EXPECT_EQ(languageOf("De man zei what the hell, maar hij is toch in de auto van zijn moeder gestapt."), "nl");
}

}  // namespace
}  // namespace ovrin
