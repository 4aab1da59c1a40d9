// Reads one JSON text from front to back, taking what is asked for and skipping the rest without storing it.
//
// Made for the small payloads of a streamed answer, where building a document costs more than the answer is worth.
// Strict RFC 8259, nesting up to 512 levels; malformed UTF-8 inside texts is replaced. Whatever is read after the JSON
// turned out to be malformed reads as a mismatch, so callers look at isComplete() once, at the end.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ovrin {

class JSONReader {
public:
    // The text must outlive the reader.
    explicit JSONReader(std::string_view json) : at_(json.data()), end_(json.data() + json.size()) {}

    // Reads an object, calling onMember(std::string_view key) for every member; each call must read or skip exactly one
    // value. False, with the value skipped, when the next value is no object.
    template <typename OnMember>
    bool readObject(OnMember onMember) {
        if (!beginContainer('{')) return false;
        if (!take('}')) {
            do {
                const std::string_view key = readKey();
                if (isMalformed_) return false;
                onMember(key);
            } while (take(','));
            if (!take('}')) return fail();
        }
        return endContainer();
    }

    // Reads an array, calling onElement() for every element, likewise.
    template <typename OnElement>
    bool readArray(OnElement onElement) {
        if (!beginContainer('[')) return false;
        if (!take(']')) {
            do {
                onElement();
            } while (take(','));
            if (!take(']')) return fail();
        }
        return endContainer();
    }

    // Reads a text into the string. False, with the value skipped, when the next value is no text.
    bool readString(std::string& result);

    // Reads a null; anything else is left to be read.
    bool readNull() { return peek() == 'n' && skipLiteral("null"); }

    void skip();

    // True when everything was well formed and nothing but white space follows what was read.
    bool isComplete() { return peek() == '\0' && at_ == end_ && !isMalformed_; }

private:
    static constexpr int maximumDepth = 512;

    static bool isSpace(char character) {
        return character == ' ' || character == '\n' || character == '\t' || character == '\r';
    }

    // The first character of what comes next, white space passed over; NUL at the end.
    char peek() {
        while (at_ != end_ && isSpace(*at_)) ++at_;
        return at_ == end_ ? '\0' : *at_;
    }

    bool take(char character) {
        if (peek() != character || at_ == end_) return false;
        ++at_;
        return true;
    }

    bool fail() {
        isMalformed_ = true;
        at_ = end_;
        return false;
    }

    bool beginContainer(char bracket) {
        if (peek() != bracket) {
            skip();
            return false;
        }
        if (++depth_ > maximumDepth) return fail();
        ++at_;
        return true;
    }

    bool endContainer() {
        --depth_;
        return !isMalformed_;
    }

    std::string_view readKey();
    bool readText(std::string* result);
    bool readEscape(std::string* result);
    bool readHexadecimal(unsigned& unit);
    bool skipLiteral(std::string_view literal);
    bool skipNumber();
    bool skipDigits();

    const char* at_;
    const char* end_;
    int depth_ = 0;
    bool isMalformed_ = false;
    std::string unescapedKey_;
};

}  // namespace ovrin
