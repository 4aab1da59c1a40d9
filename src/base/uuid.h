// A random identity: 128 bits, of which the system's secure source gives 122.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ovrin {

class Uuid {
public:
    using Bytes = std::array<std::uint8_t, 16>;

    Uuid() = default;  // all zero
    explicit Uuid(const Bytes& bytes) : bytes_(bytes) {}

    // A fresh identity (version 4). Any thread. Throws Error when the system has no randomness to give.
    static Uuid random();

    // The canonical text of 36 characters, letters of either case; none for anything else.
    static std::optional<Uuid> parse(std::string_view text);

    // "E621E1F8-C36C-495A-93FC-0C247A3E6E5F": upper case, hyphenated.
    std::string text() const;

    const Bytes& bytes() const { return bytes_; }
    friend bool operator==(const Uuid&, const Uuid&) = default;
    friend bool operator<(const Uuid& first, const Uuid& second) { return first.bytes_ < second.bytes_; }

private:
    Bytes bytes_{};
};

}  // namespace ovrin

template <>
struct std::hash<ovrin::Uuid> {
    std::size_t operator()(const ovrin::Uuid& uuid) const noexcept;
};
