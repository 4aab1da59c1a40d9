// How the assistant came to be started.
#pragma once

#include <cstdint>

namespace ovrin {

enum class Launch : std::uint8_t {
    byUser,       // an assistant that runs already is told that it was started again
    withSession,  // one that runs already is left alone
    byBus         // for a call that is on its way to it; one that runs already is left alone
};

}  // namespace ovrin
