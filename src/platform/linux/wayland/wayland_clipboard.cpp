#include "platform/linux/wayland/wayland_clipboard.h"

#include <memory>
#include <utility>

namespace ovrin {

WaylandClipboard::WaylandClipboard(const char* name, const ImageDecoder& decoder, const ImageEncoder& encoder,
                                   WorkerExecutor& workers, WaylandSelection::Limits limits)
    : SelectionClipboard(
          [&](SelectionClient::User user) { return std::make_unique<WaylandSelection>(name, std::move(user), limits); },
          decoder, encoder, workers) {}

}  // namespace ovrin
