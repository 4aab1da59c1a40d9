// Every question the program asks about Unicode text. Text is UTF-8; malformed bytes count as U+FFFD in every answer
// and are repaired where they enter the program. All functions are pure and may be called from any thread; text that
// is all ASCII is answered without the Unicode library.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/environment.h"

namespace ovrin::text {

bool isValidUtf8(std::string_view bytes);

// The bytes with every maximal ill-formed sequence replaced by one U+FFFD (the practice that Unicode and the web
// recommend); well-formed text is passed through without a copy.
std::string repairedUtf8(std::string bytes);

// The part between the white space and line breaks at both ends (Unicode's White_Space: blanks of every width, tabs,
// no-break spaces, line and paragraph separators). A view into the argument.
std::string_view trimmed(std::string_view text);

// The same for spaces and tabs only.
std::string_view trimmedBlanks(std::string_view text);

// Whether both are the same text under canonical equivalence: é equals e followed by a combining acute accent.
bool canonicallyEqual(std::string_view first, std::string_view second);

// The user's locale decides one thing about letter case: in Turkish and Azerbaijani I pairs with ı, and İ with i.
enum class CaseRules { general, turkic };

// From LC_ALL, LC_CTYPE and LANG, in this order.
CaseRules caseRules(const Environment& environment);

// The user's alphabetical order, from LC_ALL, LC_COLLATE and LANG, without regard to letter case. Immutable after
// construction.
class CaseInsensitiveOrder {
public:
    explicit CaseInsensitiveOrder(const Environment& environment);
    ~CaseInsensitiveOrder();
    CaseInsensitiveOrder(CaseInsensitiveOrder&&) noexcept;
    CaseInsensitiveOrder& operator=(CaseInsensitiveOrder&&) noexcept;

    // Below 0, 0 or above it as the first text comes before, with or after the second.
    int compare(std::string_view first, std::string_view second) const;

private:
    struct Rules;
    std::unique_ptr<const Rules> rules_;
};

// A text to be looked for in many others without regard to letter case. Diacritics and width do count, canonically
// equivalent spellings match, and a match begins and ends between user-perceived characters (e is not found in é).
// The empty query is found everywhere. Immutable after construction.
class CaseInsensitiveQuery {
public:
    CaseInsensitiveQuery(std::string_view query, CaseRules rules);
    ~CaseInsensitiveQuery();
    CaseInsensitiveQuery(CaseInsensitiveQuery&&) noexcept;
    CaseInsensitiveQuery& operator=(CaseInsensitiveQuery&&) noexcept;

    bool isFoundIn(std::string_view text) const;

private:
    struct Folded;
    std::unique_ptr<const Folded> folded_;
};

// The same for a single text.
bool containsIgnoringCase(std::string_view text, std::string_view query, CaseRules rules);

// The text without its diacritics and letter case, then lower-cased: "CAFÉ" gives "cafe". For comparing what the user
// typed with fixed phrases, never for display.
std::string foldedIgnoringCaseAndDiacritics(std::string_view text, CaseRules rules);

// Lower and upper case by Unicode's rules, independent of the locale.
// Text whose characters were written down as they are seen, from left to right. Where most of its letters run from
// right to left, so does the line.
std::string inReadingOrder(const std::string& seen);

std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

// ASCII letters in lower case, every other byte unchanged: names of header fields, schemes and the like.
std::string asciiLowercased(std::string_view text);
bool equalsIgnoringAsciiCase(std::string_view first, std::string_view second);

// The number of user-perceived characters (extended grapheme clusters: a family emoji, a letter with its accents and
// CR LF count one each). Counting stops at the limit, so "at least two?" costs little on a long text.
std::size_t characterCount(std::string_view text, std::size_t limit = std::numeric_limits<std::size_t>::max());

// The American English name of a whole language identifier ("zh-Hans" is Simplified Chinese, "en-GB" British
// English; "_" is as good as "-"); none when it is not well-formed or its language is unknown.
std::optional<std::string> englishNameOfIdentifier(std::string_view identifier);

// The American English name of the language at the front of a code ("fr" and "fr-x!" are French); none when unknown.
std::optional<std::string> englishNameOfLanguageCode(std::string_view code);

// The languages the user wants to read, most wanted first, as BCP-47 tags, without repetitions. The variables are read
// as glibc reads them for messages: LC_ALL, LC_MESSAGES, LANG give the locale, and LANGUAGE a list that goes before it
// unless the locale is C. A script is named where the language alone would not tell it: zh_CN gives "zh-Hans-CN",
// zh_TW "zh-Hant-TW", en_US "en-US". Empty when the environment names no language.
std::vector<std::string> preferredLanguages(const Environment& environment);

}  // namespace ovrin::text
