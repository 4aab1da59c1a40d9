#include "platform/linux/qt/font_rendering.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MODULE_H

// The toolkit's own, of the calling thread. It exports the function and has no header for it.
[[gnu::weak]] FT_Library qt_getFreetype();

namespace ovrin {

void drawOutlinesAsDesigned() {
    if (qt_getFreetype == nullptr) return;
    const FT_Bool isOff = 1;
    FT_Property_Set(qt_getFreetype(), "cff", "no-stem-darkening", &isOff);
}

}  // namespace ovrin
