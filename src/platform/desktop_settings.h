// How the desktop wants programs to look and to move.
#pragma once

#include "theme/color_token.h"

namespace ovrin {

struct DesktopSettings {
    theme::Appearance appearance = theme::Appearance::light;
    bool reducesMotion = false;
    bool reducesTransparency = true;  // blurred backgrounds are rare on this desktop
    bool isComposited = true;         // whether windows can have translucent pixels at all
    friend bool operator==(const DesktopSettings&, const DesktopSettings&) = default;
};

}  // namespace ovrin
