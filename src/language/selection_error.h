// Why the selection of another program cannot be read or replaced, with the sentence that the user reads for it.
#pragma once

#include <string>

#include "base/error.h"

namespace ovrin {

class SelectionError : public Error {
public:
    enum class Case { accessibilityPermissionRequired, noSelection, pictureTooLarge };

    static SelectionError accessibilityPermissionRequired();
    static SelectionError noSelection();
    // The picture on the clipboard could not be saved in time, and would be lost.
    static SelectionError pictureTooLarge();

    Case errorCase() const { return case_; }

private:
    SelectionError(Case errorCase, std::string description);

    Case case_;
};

}  // namespace ovrin
