// Seam: the picture by which the task bar and the window switcher show the program.
#pragma once

#include <string_view>

namespace ovrin {

// Main thread.
class ApplicationIcon {
public:
    virtual ~ApplicationIcon() = default;

    // Whether the program has a picture of that name, such as "EntranceIconLight".
    virtual bool hasImage(std::string_view asset) const = 0;

    // Shows the picture from now on; the program has it. Until the first call the desktop shows what it knows of the
    // program.
    virtual void setImage(std::string_view asset) = 0;
};

}  // namespace ovrin
