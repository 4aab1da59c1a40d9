#include "base/error.h"

#include <cassert>

namespace ovrin {

std::string errorDescription(const std::exception_ptr& error) {
    assert(error);
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& failure) {
        return failure.what();
    } catch (...) {
        return "unknown error";
    }
}

}  // namespace ovrin
