// The clipboard of an X11 desktop.
#pragma once

#include <chrono>

#include "platform/linux/desktop/selection_clipboard.h"

namespace ovrin {

class X11Clipboard final : public SelectionClipboard {
public:
    // display: such as ":0"; null for the one the environment names. patience: how long an owner may let each piece
    // wait. The others as SelectionClipboard says. Throws Error when there is no X server with XFixes.
    X11Clipboard(const char* display, const ImageDecoder& decoder, const ImageEncoder& encoder, WorkerExecutor& workers,
                 std::chrono::milliseconds patience = SelectionClient::defaultPatience);
};

}  // namespace ovrin
