// A picture in memory: an immutable value that is cheap to copy and may be read from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace ovrin {

class Image {
public:
    static constexpr int bytesPerPixel = 4;

    Image() = default;

    // pixels: height rows of width pixels from the top-left corner, no padding, each pixel four bytes in the order
    // blue, green, red, alpha (alpha not premultiplied; captures are opaque). Its size must be width * height * 4.
    Image(int width, int height, std::vector<std::uint8_t> pixels)
        : width_(width),
          height_(height),
          pixels_(std::make_shared<const std::vector<std::uint8_t>>(std::move(pixels))) {}

    int width() const { return width_; }    // pixels
    int height() const { return height_; }  // pixels
    bool isEmpty() const { return width_ <= 0 || height_ <= 0; }
    const std::uint8_t* data() const { return pixels_ ? pixels_->data() : nullptr; }
    std::size_t bytesPerRow() const { return static_cast<std::size_t>(width_) * bytesPerPixel; }

private:
    int width_ = 0;
    int height_ = 0;
    std::shared_ptr<const std::vector<std::uint8_t>> pixels_;
};

}  // namespace ovrin
