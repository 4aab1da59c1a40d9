#include "windows/history_window_controller.h"

#include <utility>

namespace ovrin {

HistoryWindowController::HistoryWindowController(HistoryViewModel::Services services, MakeHistoryWindow makeWindow)
    : services_(std::move(services)), makeWindow_(std::move(makeWindow)) {}

HistoryWindowController::~HistoryWindowController() = default;

void HistoryWindowController::show() {
    if (!window_) {
        viewModel_ = std::make_unique<HistoryViewModel>(services_);
        window_ = makeWindow_(*viewModel_);
    }
    window_->present();
}

}  // namespace ovrin
