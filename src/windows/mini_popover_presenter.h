// Shows the one translation card beside the pointer, and takes it away.
#pragma once

#include <string>

#include "base/running_task.h"
#include "platform/desktop_layout.h"
#include "storage/app_config.h"
#include "windows/closable_window.h"
#include "windows/mini_popover_view_model.h"
#include "windows/mini_popover_window.h"
#include "windows/translation_card_presenter.h"

namespace ovrin {

// Main thread. Everything may be called from inside an event of the card or a notification of its view model.
class MiniPopoverPresenter final : public TranslationCardPresenter {
public:
    // What the services refer to, the config and the desktop outlive the presenter.
    MiniPopoverPresenter(MiniPopoverViewModel::Services services, const AppConfig& config, DesktopLayout& desktop,
                         MakeMiniPopoverWindow makeWindow);
    MiniPopoverPresenter(const MiniPopoverPresenter&) = delete;
    MiniPopoverPresenter& operator=(const MiniPopoverPresenter&) = delete;

    void show(std::string sourceText) override;

    // Ends the translation too.
    void close();

private:
    using Card = ClosableWindow<MiniPopoverWindow, MiniPopoverViewModel>;

    Task<void> present();

    MiniPopoverViewModel::Services services_;
    const AppConfig& config_;
    DesktopLayout& desktop_;
    MakeMiniPopoverWindow makeWindow_;
    Card card_;
    TaskSlot presentation_;  // while the desktop is asked for the pointer's place
};

}  // namespace ovrin
