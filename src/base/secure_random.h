// Random choices from the system's secure source.
#pragma once

#include <cstddef>

namespace ovrin {

// A uniformly distributed index below the count, which is above 0. Any thread.
std::size_t secureRandomIndex(std::size_t count);

}  // namespace ovrin
