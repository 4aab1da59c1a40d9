// The window of the result panel.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/published.h"
#include "views/components/ov_panel_window.h"
#include "windows/result_panel_window.h"

namespace ovrin {

class ResultPanelView;

class QtResultPanelWindow final : public OVPanelWindow, public ResultPanelWindow {
    Q_OBJECT

public:
    // The name of the brand's picture outlives it.
    QtResultPanelWindow(ViewEnvironment& environment, const Published<std::string>& brandImage,
                        std::function<void()> requestClose);

    void setContent(std::shared_ptr<ResultPanelViewModel> viewModel, Entrance entrance) override;
    void setLevel(ResultPanelWindow::Level level) override;
    bool isVisible() const override { return QWidget::isVisible(); }
    void present() override;

private:
    ViewEnvironment& environment_;
    const Published<std::string>& brandImage_;
    ResultPanelView* view_ = nullptr;
};

}  // namespace ovrin
