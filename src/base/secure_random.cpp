#include "base/secure_random.h"

#include <random>

namespace ovrin {

std::size_t secureRandomIndex(std::size_t count) {
    std::random_device source;  // the kernel's or the processor's generator
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(source);
}

}  // namespace ovrin
