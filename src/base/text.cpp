#include "base/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/normlzr.h>
#include <unicode/stringoptions.h>
#include <unicode/ubiditransform.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace ovrin::text {
namespace {

char asciiLower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool isAsciiBlank(char character) {
    return character == ' ' || character == '\t';
}

// The index of the first byte above 0x7F at or after the start; the size when there is none.
std::size_t endOfAscii(std::string_view bytes, std::size_t start) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::uint64_t word = 0;
    while (start + sizeof word <= bytes.size()) {
        std::memcpy(&word, bytes.data() + start, sizeof word);
        if ((word & highBits) != 0) break;
        start += sizeof word;
    }
    while (start < bytes.size() && static_cast<unsigned char>(bytes[start]) < 0x80) ++start;
    return start;
}

bool isAscii(std::string_view bytes) {
    return endOfAscii(bytes, 0) == bytes.size();
}

// ICU's UTF-8 macros narrow their intermediate values knowingly.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"

// Reads the code point at the index and moves the index behind it; negative for a maximal ill-formed sequence.
UChar32 decodeAt(std::string_view bytes, std::size_t& index) {
    UChar32 codePoint = 0;
    U8_NEXT(bytes, index, bytes.size(), codePoint);
    return codePoint;
}

#pragma GCC diagnostic pop

// Reads the code point before the index and moves the index to its first byte.
UChar32 previousCodePoint(std::string_view bytes, std::size_t& index) {
    auto position = static_cast<std::int32_t>(std::min<std::size_t>(index, U8_MAX_LENGTH));
    const std::int32_t available = position;
    UChar32 codePoint = 0;
    const char* tail = bytes.data() + (index - static_cast<std::size_t>(available));
    U8_PREV_OR_FFFD(tail, 0, position, codePoint);
    index -= static_cast<std::size_t>(available - position);
    return codePoint;
}

// Where the first ill-formed sequence begins; the size when the bytes are well-formed.
std::size_t endOfWellFormed(std::string_view bytes) {
    std::size_t index = endOfAscii(bytes, 0);
    while (index < bytes.size()) {
        const std::size_t start = index;
        if (decodeAt(bytes, index) < 0) return start;
        if (index < bytes.size() && static_cast<unsigned char>(bytes[index]) < 0x80) index = endOfAscii(bytes, index);
    }
    return bytes.size();
}

icu::UnicodeString toUtf16(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string toUtf8(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

icu::UnicodeString composed(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    return icu::Normalizer2::getNFCInstance(status)->normalize(text, status);
}

icu::UnicodeString decomposed(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    return icu::Normalizer2::getNFDInstance(status)->normalize(text, status);
}

std::uint32_t foldingOptions(CaseRules rules) {
    return rules == CaseRules::turkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
}

// Texts that differ only in case and canonical form become equal. They are composed first, because İ is one letter
// under the Turkic rules and its decomposition begins with another.
icu::UnicodeString foldedCase(std::string_view text, CaseRules rules) {
    return decomposed(composed(toUtf16(text)).foldCase(foldingOptions(rules)));
}

// Whether lower-casing the ASCII letters is all that case folding does to the text.
bool foldsAsAscii(std::string_view text, CaseRules rules) {
    return isAscii(text) && (rules == CaseRules::general || text.find('I') == std::string_view::npos);
}

// Whether the code point never joins a neighbour of its own kind to one user-perceived character.
bool standsAlone(UChar32 codePoint) {
    if (codePoint < 0) return true;  // stands for U+FFFD
    if (codePoint < 0x80) return codePoint != '\r';
    const auto kind =
        static_cast<UGraphemeClusterBreak>(u_getIntPropertyValue(codePoint, UCHAR_GRAPHEME_CLUSTER_BREAK));
    return kind == U_GCB_OTHER || kind == U_GCB_LF || kind == U_GCB_CONTROL;
}

std::unique_ptr<icu::BreakIterator> characterIterator() {
    UErrorCode status = U_ZERO_ERROR;
    return std::unique_ptr<icu::BreakIterator>(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
}

bool isCharacterBoundary(const icu::UnicodeString& text, std::int32_t index) {
    if (index <= 0 || index >= text.length()) return true;
    if (standsAlone(text.char32At(index - 1)) && standsAlone(text.char32At(index))) return true;
    const auto characters = characterIterator();
    characters->setText(text);
    return characters->isBoundary(index) != 0;
}

std::size_t countByIterator(std::string_view text, std::size_t limit) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUTextPointer source(
        utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status));
    const auto characters = characterIterator();
    characters->setText(source.getAlias(), status);
    std::size_t count = 0;
    while (count < limit && characters->next() != icu::BreakIterator::DONE) ++count;
    return count;
}

bool isWhiteSpace(UChar32 codePoint) {
    if (codePoint < 0x80) return codePoint == ' ' || (codePoint >= '\t' && codePoint <= '\r');
    return u_isUWhiteSpace(codePoint) != 0;
}

}  // namespace

bool isValidUtf8(std::string_view bytes) {
    return endOfWellFormed(bytes) == bytes.size();
}

std::string repairedUtf8(std::string bytes) {
    std::size_t index = endOfWellFormed(bytes);
    if (index == bytes.size()) return bytes;
    std::string repaired = bytes.substr(0, index);
    while (index < bytes.size()) {
        const std::size_t start = index;
        if (decodeAt(bytes, index) < 0) {
            repaired += "\xEF\xBF\xBD";
        } else {
            repaired.append(bytes, start, index - start);
        }
    }
    return repaired;
}

std::string_view trimmed(std::string_view text) {
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t next = begin;
        if (!isWhiteSpace(decodeAt(text, next))) break;
        begin = next;
    }
    std::size_t end = text.size();
    while (end > begin) {
        std::size_t previous = end;
        if (!isWhiteSpace(previousCodePoint(text, previous))) break;
        end = previous;
    }
    return text.substr(begin, end - begin);
}

std::string_view trimmedBlanks(std::string_view text) {
    while (!text.empty() && isAsciiBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isAsciiBlank(text.back())) text.remove_suffix(1);
    return text;
}

bool canonicallyEqual(std::string_view first, std::string_view second) {
    if (first == second) return true;
    // Two ASCII texts are equivalent only when they are identical.
    if (isAscii(first) && isAscii(second)) return false;
    UErrorCode status = U_ZERO_ERROR;
    return icu::Normalizer::compare(toUtf16(first), toUtf16(second), 0, status) == 0 && U_SUCCESS(status);
}

CaseRules caseRules(const Environment& environment) {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const auto locale = environment.value(name);
        if (!locale) continue;
        const std::string language = asciiLowercased(locale->substr(0, locale->find_first_of("_-.@")));
        return language == "tr" || language == "az" ? CaseRules::turkic : CaseRules::general;
    }
    return CaseRules::general;
}

struct CaseInsensitiveQuery::Folded {
    CaseRules rules = CaseRules::general;
    std::optional<std::string> ascii;  // the query in lower case when its folding stays within ASCII
    icu::UnicodeString utf16;          // the query folded for everything else
};

CaseInsensitiveQuery::CaseInsensitiveQuery(std::string_view query, CaseRules rules) {
    auto folded = std::make_unique<Folded>();
    folded->rules = rules;
    if (foldsAsAscii(query, rules)) folded->ascii = asciiLowercased(query);
    folded->utf16 = foldedCase(query, rules);
    folded_ = std::move(folded);
}

CaseInsensitiveQuery::~CaseInsensitiveQuery() = default;
CaseInsensitiveQuery::CaseInsensitiveQuery(CaseInsensitiveQuery&&) noexcept = default;
CaseInsensitiveQuery& CaseInsensitiveQuery::operator=(CaseInsensitiveQuery&&) noexcept = default;

bool CaseInsensitiveQuery::isFoundIn(std::string_view text) const {
    if (folded_->utf16.isEmpty()) return true;
    if (foldsAsAscii(text, folded_->rules)) {
        if (!folded_->ascii) return false;
        const auto same = [](char inText, char inQuery) { return asciiLower(inText) == inQuery; };
        return std::search(text.begin(), text.end(), folded_->ascii->begin(), folded_->ascii->end(), same) !=
               text.end();
    }
    const icu::UnicodeString folded = foldedCase(text, folded_->rules);
    const std::int32_t length = folded_->utf16.length();
    for (std::int32_t at = folded.indexOf(folded_->utf16); at >= 0; at = folded.indexOf(folded_->utf16, at + 1)) {
        if (isCharacterBoundary(folded, at) && isCharacterBoundary(folded, at + length)) return true;
    }
    return false;
}

bool containsIgnoringCase(std::string_view text, std::string_view query, CaseRules rules) {
    return CaseInsensitiveQuery(query, rules).isFoundIn(text);
}

std::string foldedIgnoringCaseAndDiacritics(std::string_view text, CaseRules rules) {
    if (foldsAsAscii(text, rules)) return asciiLowercased(text);
    const icu::UnicodeString whole = decomposed(toUtf16(text));
    icu::UnicodeString bare;
    for (std::int32_t index = 0; index < whole.length(); index = whole.moveIndex32(index, 1)) {
        const UChar32 codePoint = whole.char32At(index);
        if (u_charType(codePoint) != U_NON_SPACING_MARK) bare.append(codePoint);
    }
    bare.foldCase(foldingOptions(rules));
    return toUtf8(composed(bare).toLower(icu::Locale::getRoot()));
}

std::string inReadingOrder(const std::string& seen) {
    const icu::UnicodeString visual = toUtf16(seen);
    std::int32_t leftward = 0, rightward = 0;
    for (std::int32_t i = 0; i < visual.length(); i = visual.moveIndex32(i, 1)) {
        const UCharDirection direction = u_charDirection(visual.char32At(i));
        if (direction == U_LEFT_TO_RIGHT) ++rightward;
        if (direction == U_RIGHT_TO_LEFT || direction == U_RIGHT_TO_LEFT_ARABIC) ++leftward;
    }
    if (leftward == 0) return seen;
    icu::UnicodeString logical;
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = ubiditransform_transform(
        nullptr, visual.getBuffer(), visual.length(), logical.getBuffer(visual.length()), visual.length(), UBIDI_LTR,
        UBIDI_VISUAL, leftward > rightward ? UBIDI_RTL : UBIDI_LTR, UBIDI_LOGICAL, UBIDI_MIRRORING_OFF, 0, &status);
    logical.releaseBuffer(std::max(0, length));
    return U_FAILURE(status) ? seen : toUtf8(logical);
}

std::string lowercased(std::string_view text) {
    if (isAscii(text)) return asciiLowercased(text);
    return toUtf8(toUtf16(text).toLower(icu::Locale::getRoot()));
}

std::string uppercased(std::string_view text) {
    return toUtf8(toUtf16(text).toUpper(icu::Locale::getRoot()));
}

std::string asciiLowercased(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), asciiLower);
    return result;
}

bool equalsIgnoringAsciiCase(std::string_view first, std::string_view second) {
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                      [](char left, char right) { return asciiLower(left) == asciiLower(right); });
}

std::size_t characterCount(std::string_view text, std::size_t limit) {
    std::size_t count = 0;
    for (std::size_t index = 0; index < text.size() && count < limit; ++count) {
        if (!standsAlone(decodeAt(text, index))) return countByIterator(text, limit);
    }
    // The last character counted before the limit may still have a combining mark behind it, which changes nothing.
    return count;
}

}  // namespace ovrin::text
