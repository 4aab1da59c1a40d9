#include "platform/linux/x11/x11_clipboard.h"

#include <memory>
#include <utility>

#include "platform/linux/x11/x11_selection.h"

namespace ovrin {

X11Clipboard::X11Clipboard(const char* display, const ImageDecoder& decoder, const ImageEncoder& encoder,
                           WorkerExecutor& workers, std::chrono::milliseconds patience)
    : SelectionClipboard(
          [&](SelectionClient::User user) {
              return std::make_unique<X11Selection>(display, std::move(user), patience);
          },
          decoder, encoder, workers) {}

}  // namespace ovrin
