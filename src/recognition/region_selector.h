// Lets the user choose a rectangle of the screen.
#pragma once

#include <exception>
#include <functional>
#include <variant>

#include "base/geometry.h"

namespace ovrin {

class RegionSelector {
public:
    // The chosen rectangle, or why there is none: a CancellationError when the user gave up.
    using Result = std::variant<DisplayRect, std::exception_ptr>;
    using Completion = std::function<void(Result)>;

    virtual ~RegionSelector() = default;

    // Shows the means to choose and returns. The completion is called at most once, on the main thread, when nothing
    // of it is on screen any more; a new begin() drops the completion of an earlier one uncalled. Main thread.
    virtual void begin(Completion completion) = 0;
};

}  // namespace ovrin
