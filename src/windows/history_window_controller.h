// Owns the one history window: makes it on first use and keeps it, with its search and its filter.
#pragma once

#include <memory>

#include "windows/history_view_model.h"
#include "windows/history_window.h"

namespace ovrin {

// Main thread.
class HistoryWindowController {
public:
    // What the services refer to outlives the controller.
    HistoryWindowController(HistoryViewModel::Services services, MakeHistoryWindow makeWindow);
    HistoryWindowController(const HistoryWindowController&) = delete;
    HistoryWindowController& operator=(const HistoryWindowController&) = delete;
    ~HistoryWindowController();

    void show();

private:
    HistoryViewModel::Services services_;
    MakeHistoryWindow makeWindow_;
    std::unique_ptr<HistoryViewModel> viewModel_;  // both from the first use on
    std::unique_ptr<HistoryWindow> window_;
};

}  // namespace ovrin
