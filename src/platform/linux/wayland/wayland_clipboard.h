// The clipboard of a Wayland desktop, whichever window has the keyboard.
#pragma once

#include "platform/linux/desktop/selection_clipboard.h"
#include "platform/linux/wayland/wayland_selection.h"

namespace ovrin {

class WaylandClipboard final : public SelectionClipboard {
public:
    // name: of the compositor's socket; null for the one the environment names. The others as SelectionClipboard says.
    // SIGPIPE must be ignored in the process. Throws Error when no compositor answers, or it lets no program look at
    // the clipboard.
    WaylandClipboard(const char* name, const ImageDecoder& decoder, const ImageEncoder& encoder,
                     WorkerExecutor& workers, WaylandSelection::Limits limits = {});

    // Shift+Insert, the keys of paste here, takes what is selected in some programs.
    std::vector<ClipboardSource> pastedSources() const override {
        return {ClipboardSource::clipboard, ClipboardSource::primary};
    }
};

}  // namespace ovrin
