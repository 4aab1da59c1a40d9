#include "base/uuid.h"

#include <cerrno>
#include <cstring>

#include <sys/random.h>

#include "base/error.h"

namespace ovrin {
namespace {

constexpr std::string_view pattern = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

std::optional<unsigned> hexadecimalDigit(char character) {
    if (character >= '0' && character <= '9') return static_cast<unsigned>(character - '0');
    if (character >= 'a' && character <= 'f') return static_cast<unsigned>(character - 'a' + 10);
    if (character >= 'A' && character <= 'F') return static_cast<unsigned>(character - 'A' + 10);
    return std::nullopt;
}

}  // namespace

Uuid Uuid::random() {
    Bytes bytes{};
    ssize_t received = 0;
    do {
        received = ::getrandom(bytes.data(), bytes.size(), 0);
    } while (received < 0 && errno == EINTR);
    // Requests of up to 256 bytes are answered whole or not at all.
    if (received != static_cast<ssize_t>(bytes.size())) throw Error("the system gives no random numbers");
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);  // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);  // the standard's variant
    return Uuid(bytes);
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != pattern.size()) return std::nullopt;
    Bytes bytes{};
    std::size_t digits = 0;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (pattern[index] == '-') {
            if (text[index] != '-') return std::nullopt;
            continue;
        }
        const auto digit = hexadecimalDigit(text[index]);
        if (!digit) return std::nullopt;
        std::uint8_t& byte = bytes[digits / 2];
        byte = static_cast<std::uint8_t>(byte << 4U | *digit);
        ++digits;
    }
    return Uuid(bytes);
}

std::string Uuid::text() const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text(pattern);
    std::size_t written = 0;
    for (char& character : text) {
        if (character == '-') continue;
        const unsigned byte = bytes_[written / 2];
        character = digits[written % 2 == 0 ? byte >> 4U : byte & 0x0FU];
        ++written;
    }
    return text;
}

}  // namespace ovrin

std::size_t std::hash<ovrin::Uuid>::operator()(const ovrin::Uuid& uuid) const noexcept {
    // Random already: any piece of it is a good hash.
    std::size_t hash = 0;
    std::memcpy(&hash, uuid.bytes().data(), sizeof hash);
    return hash;
}
