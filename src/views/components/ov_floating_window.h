// A frameless window with rounded corners over the page colour that floats above others: toast, palette, card.
#pragma once

#include <cstdint>

#include "views/components/ov_window_background.h"

namespace ovrin {

class OVFloatingWindow : public OVWindowBackground {
    Q_OBJECT

public:
    enum class Focus : std::uint8_t {
        never,   // shows without activating, lets the keyboard stay where it is
        accepts  // takes the keyboard when it is shown
    };

    // cornerRadius in points. Where nothing composites the screen the window is cut to its shape instead of blended.
    OVFloatingWindow(ViewEnvironment& environment, double cornerRadius, Focus focus);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void applyShape();

    double cornerRadius_;
};

}  // namespace ovrin
