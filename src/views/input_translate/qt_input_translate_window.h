// The window of the input translation.
#pragma once

#include <functional>
#include <string>

#include "base/published.h"
#include "views/components/ov_panel_window.h"
#include "windows/input_translate_window.h"

namespace ovrin {

class QtInputTranslateWindow final : public OVPanelWindow, public InputTranslateWindow {
    Q_OBJECT

public:
    // For MakeInputTranslateWindow. The environment and the name of the brand's picture outlive it.
    QtInputTranslateWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                           InputTranslateViewModel& viewModel, std::function<void()> requestClose);

    void present() override;
};

}  // namespace ovrin
