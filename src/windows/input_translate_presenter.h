// Opens the one input translation window.
#pragma once

#include <string>

#include "storage/app_config.h"
#include "windows/closable_window.h"
#include "windows/input_translate_view_model.h"
#include "windows/input_translate_window.h"

namespace ovrin {

// Main thread.
class InputTranslatePresenter {
public:
    // What the services refer to and the config outlive the presenter.
    InputTranslatePresenter(InputTranslateViewModel::Services services, const AppConfig& config,
                            MakeInputTranslateWindow makeWindow);
    InputTranslatePresenter(const InputTranslatePresenter&) = delete;
    InputTranslatePresenter& operator=(const InputTranslatePresenter&) = delete;

    // Opens a window that translates the text at once, unless that is empty. One that is open only comes to the front
    // and keeps its content.
    void show(const std::string& initialText);

private:
    using Open = ClosableWindow<InputTranslateWindow, InputTranslateViewModel>;

    InputTranslateViewModel::Services services_;
    const AppConfig& config_;
    MakeInputTranslateWindow makeWindow_;
    Open open_;
};

}  // namespace ovrin
