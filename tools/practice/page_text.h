// The page that demonstrations show, in several languages, and all its sentences in the languages that the practice
// service translates into. One sentence is one line of the page.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ovrin {

struct PageSentence {
    std::string_view simplifiedChinese;
    std::string_view english;
    std::string_view japanese;
    std::string_view korean;
};

struct PageSection {
    std::string_view languageTag;  // of the sentences as they are printed
    std::string_view name;         // of the language, in itself
    std::span<const PageSentence> sentences;
};

inline constexpr std::string_view pageTitle = "海边的车站 · The station by the sea";

std::span<const PageSection> pageSections();

// A sentence of the page in one of its four languages; none for another tag.
std::optional<std::string_view> sentenceIn(const PageSentence& sentence, std::string_view languageTag);

// What a line of the page says in another language. The line may be as a reader of pictures read it: spaces and
// punctuation do not matter, and a few wrong characters don't either. None for a line that is not from the page, or a
// language that is none of its own.
std::optional<std::string> pageTranslation(std::string_view line, std::string_view languageTag);

}  // namespace ovrin
