// The capsule of a toast: a symbol and one line of text or two small ones, 260 x 40 points, never taking the keyboard.
#pragma once

#include <string>

#include "app/toast_window.h"
#include "views/components/ov_floating_window.h"

namespace ovrin {

class ToastPanel final : public OVFloatingWindow, public ToastWindow::Panel {
    Q_OBJECT

public:
    // Shows itself at the top centre of the main screen. message is UTF-8; what does not fit is cut with an ellipsis.
    ToastPanel(ViewEnvironment& environment, const std::string& message, OVIcon icon);
};

}  // namespace ovrin
