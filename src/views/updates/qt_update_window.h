// The updater's window.
#pragma once

#include <functional>
#include <string>

#include "base/published.h"
#include "updates/update_window.h"
#include "views/components/ov_standard_window.h"

namespace ovrin {

class QtUpdateWindow final : public OVStandardWindow, public UpdateWindow {
    Q_OBJECT

public:
    // For MakeUpdateWindow. The environment and the name of the brand's picture outlive it.
    QtUpdateWindow(ViewEnvironment& environment, const Published<std::string>& brandImage, UpdateViewModel& viewModel,
                   std::function<void()> requestClose);

    void present() override;
};

}  // namespace ovrin
