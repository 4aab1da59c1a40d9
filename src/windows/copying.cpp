#include "windows/copying.h"

#include <utility>

#include "platform/clipboard_service.h"
#include "platform/toast_presenter.h"

namespace ovrin {

void copyAndTell(std::string text, std::string message, ClipboardService& clipboard, ToastPresenter& toasts) {
    if (const auto problem = clipboard.problem()) return toasts.show(*problem, "exclamationmark.triangle");
    clipboard.writeString(std::move(text));
    toasts.show(std::move(message), "checkmark");
}

}  // namespace ovrin
