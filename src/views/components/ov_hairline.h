// A line of one point across its width, of the ink with the opacity that its place wants in either appearance.
#pragma once

#include "views/components/ov_widget.h"

namespace ovrin {

class OVHairline final : public OVWidget {
public:
    struct Opacity {
        float light = 0;
        float dark = 0;
    };

    OVHairline(ViewEnvironment& environment, Opacity opacity);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Opacity opacity_;
};

}  // namespace ovrin
