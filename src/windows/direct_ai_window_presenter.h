// Opens the one free chat and decides what becomes of its window: a bar that goes when the keyboard does, and the
// conversation into which the first question turns it.
#pragma once

#include "base/geometry.h"
#include "base/published.h"
#include "storage/app_config.h"
#include "windows/closable_window.h"
#include "windows/direct_ai_panel.h"
#include "windows/direct_ai_view_model.h"

namespace ovrin {

// Main thread.
class DirectAIWindowPresenter {
public:
    static constexpr Size compactSize{540, 150};
    static constexpr Size expandedSize{580, 560};

    // What the services refer to and the config outlive the presenter.
    DirectAIWindowPresenter(DirectAIViewModel::Services services, const AppConfig& config, MakeDirectAIPanel makePanel);
    DirectAIWindowPresenter(const DirectAIWindowPresenter&) = delete;
    DirectAIWindowPresenter& operator=(const DirectAIWindowPresenter&) = delete;

    // Brings the chat on screen to the front, or opens a fresh one.
    void show();

    // Ends what streams. The conversation is forgotten.
    void close();

private:
    using Chat = ClosableWindow<DirectAIPanel, DirectAIViewModel>;

    Chat::Content makeChat(const Chat::Requests& requests);
    void resize();

    DirectAIViewModel::Services services_;
    const AppConfig& config_;
    MakeDirectAIPanel makePanel_;
    Chat chat_;
    bool closesWhenResigningKey_ = true;
    bool hasTurns_ = false;
    Subscription turns_;
};

}  // namespace ovrin
