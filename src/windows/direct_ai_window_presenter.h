// Opens the one free chat and decides what becomes of its window: a bar that goes when the keyboard does, and the
// conversation into which the first question turns it.
#pragma once

#include <memory>

#include "base/geometry.h"
#include "storage/app_config.h"
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
    ~DirectAIWindowPresenter();

    // Brings the chat on screen to the front, or opens a fresh one.
    void show();

    // Ends what streams. The conversation is forgotten.
    void close();

private:
    struct Chat;

    std::shared_ptr<Chat> makeChat();
    void resize();
    void closeUnlessConversing();

    DirectAIViewModel::Services services_;
    const AppConfig& config_;
    MakeDirectAIPanel makePanel_;
    std::shared_ptr<Chat> chat_;  // on screen, or none
};

}  // namespace ovrin
