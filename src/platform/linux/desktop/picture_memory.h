// Memory that the display server or the compositor writes a picture into.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace ovrin {

class PictureMemory {
public:
    // size: bytes. Throws Error when there is no room.
    explicit PictureMemory(std::size_t size);
    PictureMemory(const PictureMemory&) = delete;
    PictureMemory& operator=(const PictureMemory&) = delete;
    ~PictureMemory();

    int descriptor() const { return descriptor_; }
    // A second descriptor, for whoever closes the one that is handed over.
    int duplicated() const;
    std::span<const std::uint8_t> bytes() const { return {static_cast<const std::uint8_t*>(data_), size_}; }

private:
    std::size_t size_;
    int descriptor_ = -1;
    void* data_ = nullptr;
};

}  // namespace ovrin
