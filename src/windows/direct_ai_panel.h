// Seam between the free chat's presenter and its window: a slim input bar that grows into a conversation.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "base/geometry.h"
#include "windows/direct_ai_view_model.h"

namespace ovrin {

class DirectAIPanel {
public:
    enum class Shadow : std::uint8_t { none, inDarkAppearance };
    enum class Kind : std::uint8_t {
        bar,          // floats above the desktop for as long as it has the keyboard
        conversation  // a window like others
    };

    struct Form {
        Kind kind = Kind::bar;
        Size size;  // points
        Size minimumSize;
        Shadow shadow = Shadow::none;
    };

    // Called from the event loop. The panel stays until the loop comes round again.
    struct Events {
        std::function<void()> requestClose;  // Escape, Command+W or the close button
        std::function<void()> resignedKey;   // the keyboard has gone elsewhere
    };

    virtual ~DirectAIPanel() = default;  // takes it off the screen

    // In front, with the keyboard.
    virtual void present() = 0;
    virtual bool isVisible() const = 0;

    // Takes on the form around its present centre, in 0.38 s, slow at both ends; at once where the desktop places the
    // conversation's window.
    virtual void animateTo(const Form& form) = 0;
};

// Makes a panel of the given form, centred on the screen and not yet visible: without a title bar, moved by its
// background, resizable, above the windows of other programs and on every workspace. The view model outlives it.
using MakeDirectAIPanel = std::function<std::unique_ptr<DirectAIPanel>(
    DirectAIViewModel& viewModel, const DirectAIPanel::Form& form, DirectAIPanel::Events events)>;

}  // namespace ovrin
