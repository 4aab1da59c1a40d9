// Copying, as every window and flow does it.
#pragma once

#include <string>

namespace ovrin {

class ClipboardService;
class ToastPresenter;

// Puts the text on the clipboard and says so with the message, or says why that cannot be done.
void copyAndTell(std::string text, std::string message, ClipboardService& clipboard, ToastPresenter& toasts);

}  // namespace ovrin
