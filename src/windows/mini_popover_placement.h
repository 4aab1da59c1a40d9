// Where the translation card stands: below and to the right of the pointer, within what the pointer's display has free.
#pragma once

#include <vector>

#include "base/geometry.h"
#include "platform/desktop_layout.h"

namespace ovrin {

inline constexpr Size miniPopoverSize{350, 225};  // points

// The card's lower-left corner.
WindowPoint miniPopoverOrigin(WindowPoint pointer, const std::vector<DesktopScreen>& screens);

}  // namespace ovrin
