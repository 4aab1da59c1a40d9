// Tells the language of texts in Latin letters that are too short for statistics.
#pragma once

#include <map>
#include <optional>
#include <string>

#include <unicode/unistr.h>

namespace ovrin {

// How much speaks for each language, by BCP-47 tag. One word that only one language has is 1.
using LanguageEvidence = std::map<std::string, double, std::less<>>;

// From the frequent words, the endings and the letters of the text. Any thread.
LanguageEvidence evidenceIn(const icu::UnicodeString& text);

// The language that most speaks for; none when nothing speaks for any.
std::optional<std::string> strongest(const LanguageEvidence& evidence);

}  // namespace ovrin
