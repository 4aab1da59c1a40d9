// A rounded card filled with the canvas colour, for content to be laid out on.
#pragma once

#include <cstdint>

#include "views/components/ov_widget.h"

namespace ovrin {

class OVSurface : public OVWidget {
    Q_OBJECT

public:
    enum class Elevation : std::uint8_t { flat, elevated };

    // radius in points. An elevated card needs about 18 points of free space around it for its shadow.
    OVSurface(ViewEnvironment& environment, double radius, Elevation elevation, QWidget* parent = nullptr);

    // The space that the shadow takes; contents margins of the widget include it.
    int shadowMargin() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double radius_;
    Elevation elevation_;
};

}  // namespace ovrin
