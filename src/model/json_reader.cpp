#include "model/json_reader.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "base/text.h"

namespace ovrin {

namespace {

constexpr std::uint64_t everyByte = 0x0101010101010101U;
constexpr std::uint64_t highBits = everyByte << 7U;

// Marks (in their highest bits) the bytes that end a run of plain text: a quotation mark, a backslash, a control
// character. Marks after the first one may be wrong.
std::uint64_t marksOfSpecialBytes(std::uint64_t word) {
    const auto zeroBytes = [](std::uint64_t value) { return (value - everyByte) & ~value & highBits; };
    const std::uint64_t controls = (word - everyByte * 0x20U) & ~word & highBits;
    return zeroBytes(word ^ (everyByte * '"')) | zeroBytes(word ^ (everyByte * '\\')) | controls;
}

inline const char* endOfPlainRun(const char* at, const char* end) {
    if constexpr (std::endian::native == std::endian::little) {
        while (end - at >= 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, at, sizeof word);
            if (const std::uint64_t marks = marksOfSpecialBytes(word)) return at + std::countr_zero(marks) / 8;
            at += 8;
        }
    }
    while (at != end && *at != '"' && *at != '\\' && static_cast<unsigned char>(*at) >= 0x20) ++at;
    return at;
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLeadSurrogate(unsigned unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isTrailSurrogate(unsigned unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUTF8(std::string& text, unsigned codePoint) {
    const auto put = [&](unsigned byte) { text.push_back(static_cast<char>(byte)); };
    if (codePoint < 0x80) {
        put(codePoint);
    } else if (codePoint < 0x800) {
        put(0xC0U | codePoint >> 6U);
        put(0x80U | (codePoint & 0x3FU));
    } else if (codePoint < 0x10000) {
        put(0xE0U | codePoint >> 12U);
        put(0x80U | (codePoint >> 6U & 0x3FU));
        put(0x80U | (codePoint & 0x3FU));
    } else {
        put(0xF0U | codePoint >> 18U);
        put(0x80U | (codePoint >> 12U & 0x3FU));
        put(0x80U | (codePoint >> 6U & 0x3FU));
        put(0x80U | (codePoint & 0x3FU));
    }
}

}  // namespace

bool JSONReader::readString(std::string& result) {
    if (peek() != '"') {
        skip();
        return false;
    }
    const char* const start = ++at_;
    at_ = endOfPlainRun(at_, end_);
    result.assign(start, at_);
    if (at_ != end_ && *at_ == '"') {
        ++at_;
    } else if (!readText(&result)) {
        return false;
    }
    if (!text::isValidUtf8(result)) result = text::repairedUtf8(std::move(result));
    return true;
}

std::string_view JSONReader::readKey() {
    if (!take('"')) return fail(), std::string_view();
    const char* const start = at_;
    at_ = endOfPlainRun(at_, end_);
    std::string_view key(start, static_cast<std::size_t>(at_ - start));
    if (at_ != end_ && *at_ == '"') {
        ++at_;
    } else {
        unescapedKey_.assign(key);
        if (!readText(&unescapedKey_)) return {};
        key = unescapedKey_;
    }
    if (!take(':')) fail();
    return key;
}

// The rest of a text up to and with its closing quotation mark, appended to the result when there is one.
bool JSONReader::readText(std::string* result) {
    while (true) {
        const char* const start = at_;
        at_ = endOfPlainRun(at_, end_);
        if (result) result->append(start, at_);
        if (at_ == end_) return fail();
        const char special = *at_++;
        if (special == '"') return true;
        if (special != '\\' || !readEscape(result)) return fail();
    }
}

bool JSONReader::readEscape(std::string* result) {
    static constexpr std::string_view names = "\"\\/bfnrt";
    static constexpr std::string_view values = "\"\\/\b\f\n\r\t";
    if (at_ == end_) return false;
    const char name = *at_++;
    if (name != 'u') {
        const auto index = names.find(name);
        if (index == std::string_view::npos) return false;
        if (result) result->push_back(values[index]);
        return true;
    }
    unsigned codePoint = 0;
    if (!readHexadecimal(codePoint) || isTrailSurrogate(codePoint)) return false;
    if (isLeadSurrogate(codePoint)) {
        unsigned trail = 0;
        if (end_ - at_ < 2 || at_[0] != '\\' || at_[1] != 'u') return false;
        at_ += 2;
        if (!readHexadecimal(trail) || !isTrailSurrogate(trail)) return false;
        codePoint = 0x10000 + ((codePoint - 0xD800) << 10U) + (trail - 0xDC00);
    }
    if (result) appendUTF8(*result, codePoint);
    return true;
}

bool JSONReader::readHexadecimal(unsigned& unit) {
    if (end_ - at_ < 4) return false;
    unit = 0;
    for (const char* const stop = at_ + 4; at_ != stop; ++at_) {
        const char lower = static_cast<char>(*at_ | 0x20);
        if (isDigit(*at_)) {
            unit = unit * 16 + static_cast<unsigned>(*at_ - '0');
        } else if (lower >= 'a' && lower <= 'f') {
            unit = unit * 16 + static_cast<unsigned>(lower - 'a') + 10;
        } else {
            return false;
        }
    }
    return true;
}

void JSONReader::skip() {
    switch (peek()) {
        case '{':
            readObject([this](std::string_view) { skip(); });
            return;
        case '[':
            readArray([this] { skip(); });
            return;
        case '"':
            ++at_;
            readText(nullptr);
            return;
        case 't':
            skipLiteral("true");
            return;
        case 'f':
            skipLiteral("false");
            return;
        case 'n':
            skipLiteral("null");
            return;
        default:
            skipNumber();
    }
}

bool JSONReader::skipLiteral(std::string_view literal) {
    if (!std::string_view(at_, static_cast<std::size_t>(end_ - at_)).starts_with(literal)) return fail();
    at_ += literal.size();
    return true;
}

bool JSONReader::skipNumber() {
    if (at_ != end_ && *at_ == '-') ++at_;
    if (at_ != end_ && *at_ == '0') {
        ++at_;
    } else if (!skipDigits()) {
        return fail();
    }
    if (at_ != end_ && *at_ == '.') {
        ++at_;
        if (!skipDigits()) return fail();
    }
    if (at_ != end_ && (*at_ == 'e' || *at_ == 'E')) {
        ++at_;
        if (at_ != end_ && (*at_ == '+' || *at_ == '-')) ++at_;
        if (!skipDigits()) return fail();
    }
    return true;
}

bool JSONReader::skipDigits() {
    const char* const start = at_;
    while (at_ != end_ && isDigit(*at_)) ++at_;
    return at_ != start;
}

}  // namespace ovrin
