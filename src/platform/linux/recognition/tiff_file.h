// TIFF files, which the window toolkit writes only with a plugin that many desktops lack.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace ovrin {

// The picture of a PNG, JPEG or BMP file as a TIFF file, compressed without loss; empty when it cannot be read. Any
// thread; quiet as long as a LinuxImageDecoder has been made.
std::vector<std::byte> tiffFile(std::span<const std::byte> picture);

}  // namespace ovrin
