#include "base/error.h"

namespace ovrin {

std::string errorDescription(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& failure) {
        return failure.what();
    } catch (...) {
        return "unknown error";
    }
}

}  // namespace ovrin
