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

    // Draws a shadow around the frame, which leaves this margin on every side of the window; 0 for none. Pointer and
    // keyboard go to what lies below the margin. Of use where something composites the screen.
    void setShadowMargin(int points);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void applyShape();
    void tellMargin();

    double cornerRadius_;
    int shadowMargin_ = 0;
};

}  // namespace ovrin
