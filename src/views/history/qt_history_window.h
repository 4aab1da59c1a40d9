// The history's window.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_standard_window.h"
#include "windows/history_window.h"

namespace ovrin {

class HistoryView;

class QtHistoryWindow final : public OVStandardWindow, public HistoryWindow {
    Q_OBJECT

public:
    // The name of the brand's picture outlives it, as what MakeHistoryWindow says.
    QtHistoryWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                    HistoryViewModel& viewModel);

    void present() override { OVStandardWindow::present(); }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    HistoryViewModel& viewModel_;
};

}  // namespace ovrin
