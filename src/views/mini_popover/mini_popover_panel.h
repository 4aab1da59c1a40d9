// The card beside the pointer: above everything, never with the keyboard.
#pragma once

#include <functional>
#include <string>

#include "base/published.h"
#include "views/components/ov_floating_window.h"
#include "windows/mini_popover_window.h"

namespace ovrin {

class MiniPopoverPanel final : public OVFloatingWindow, public MiniPopoverWindow {
    Q_OBJECT

public:
    // For MakeMiniPopoverWindow. The environment and the name of the brand's picture outlive the panel.
    MiniPopoverPanel(ViewEnvironment& environment, const Published<std::string>& brandImage,
                     MiniPopoverViewModel& viewModel, std::function<void()> requestClose);

    void present(WindowPoint origin) override;
};

}  // namespace ovrin
