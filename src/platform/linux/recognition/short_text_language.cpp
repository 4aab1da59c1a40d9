#include "platform/linux/recognition/short_text_language.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include "platform/linux/recognition/language_marks.h"

namespace ovrin {

namespace {

// Chosen on tests/platform/language_texts.txt, where they tell 287 of the 300 texts.
constexpr double weightOfEnding = 0.4;
constexpr double weightOfLetter = 0.5;
constexpr std::size_t shortestWordWithEnding = 4;  // letters

std::vector<std::u16string_view> wordsOf(std::u16string_view list) {
    std::vector<std::u16string_view> words;
    while (!list.empty()) {
        const std::u16string_view word = list.substr(0, list.find(u' '));
        words.push_back(word);
        list.remove_prefix(std::min(word.size() + 1, list.size()));
    }
    return words;
}

using Languages = std::vector<std::string_view>;

// Which languages have each word among their frequent ones.
const std::unordered_map<std::u16string_view, Languages>& frequentWords() {
    static const auto words = [] {
        std::unordered_map<std::u16string_view, Languages> languages;
        for (const LanguageMarks& marks : languageMarks()) {
            for (const std::u16string_view word : wordsOf(marks.words)) languages[word].push_back(marks.language);
        }
        return languages;
    }();
    return words;
}

// Those with the longest ending that the word has, and something before it.
Languages languagesByEnding(std::u16string_view word) {
    Languages languages;
    std::size_t longest = 1;
    for (const LanguageMarks& marks : languageMarks()) {
        std::size_t length = 0;
        for (const std::u16string_view ending : wordsOf(marks.endings)) {
            if (word.size() > ending.size() + 1 && word.ends_with(ending)) length = std::max(length, ending.size());
        }
        if (length > longest) languages.clear();
        if (length >= longest && length > 0) languages.push_back(marks.language);
        longest = std::max(longest, length);
    }
    return languages;
}

// Words of several languages speak a little for each.
void add(LanguageEvidence& evidence, const Languages& languages, double weight) {
    for (const std::string_view language : languages) {
        evidence[std::string(language)] += weight / static_cast<double>(languages.size());
    }
}

void addWord(LanguageEvidence& evidence, std::u16string_view word) {
    const auto found = frequentWords().find(word);
    if (found != frequentWords().end()) return add(evidence, found->second, 1);
    if (word.size() >= shortestWordWithEnding) add(evidence, languagesByEnding(word), weightOfEnding);
}

void addLetters(LanguageEvidence& evidence, const icu::UnicodeString& text) {
    for (const LetterMark& mark : letterMarks()) {
        if (text.indexOf(mark.letter) >= 0) evidence[std::string(mark.language)] += weightOfLetter * mark.part;
    }
}

icu::UnicodeString composed(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString result = icu::Normalizer2::getNFCInstance(status)->normalize(text, status);
    return U_SUCCESS(status) ? result : text;
}

}  // namespace

LanguageEvidence evidenceIn(const icu::UnicodeString& text) {
    LanguageEvidence evidence;
    icu::UnicodeString letters = composed(text);
    const bool hasDottedCapital = letters.indexOf(u'İ') >= 0;
    // In lower case it would be two characters outside of Turkish.
    letters.findAndReplace(u"İ", u"i").toLower();
    std::u16string word;
    for (int i = 0; i <= letters.length(); ++i) {
        if (i < letters.length() && u_isalpha(letters.charAt(i))) {
            word.push_back(letters.charAt(i));
        } else if (!word.empty()) {
            addWord(evidence, word);
            word.clear();
        }
    }
    addLetters(evidence, letters);
    if (hasDottedCapital) addLetters(evidence, u"İ");
    return evidence;
}

std::optional<std::string> strongest(const LanguageEvidence& evidence) {
    const auto best = std::max_element(evidence.begin(), evidence.end(),
                                       [](const auto& one, const auto& other) { return one.second < other.second; });
    return best == evidence.end() ? std::nullopt : std::optional(best->first);
}

}  // namespace ovrin
