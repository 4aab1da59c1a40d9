// Memory that holds code of shared libraries which is seldom needed.
#pragma once

#include <span>
#include <string_view>

namespace ovrin {

// Has the kernel take back the unchanged pages of the loaded libraries with these file names (up to the version:
// "libonnxruntime.so"). They come back from the page cache, one fault each, when somebody runs into them. Any thread.
void giveBackPagesOfLibraries(std::span<const std::string_view> names);

}  // namespace ovrin
