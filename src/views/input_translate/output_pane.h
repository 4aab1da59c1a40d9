// The half of the window into which the translation streams.
#pragma once

#include "base/published.h"
#include "views/input_translate/text_pane.h"

namespace ovrin {

class InputTranslateViewModel;
class OVErrorNote;
class OVIconButton;
class OVLabel;
class OVPixelLoader;
class OVScrollArea;
class OVStreamingText;

class OutputPane final : public TextPane {
    Q_OBJECT

public:
    // The view model outlives it.
    OutputPane(ViewEnvironment& environment, InputTranslateViewModel& viewModel, QWidget* parent = nullptr);

private:
    QWidget* makeContent();
    void bind();
    void refresh();

    InputTranslateViewModel& viewModel_;
    OVPixelLoader* loader_;
    OVLabel* thinking_;
    OVIconButton* speak_;
    OVIconButton* copy_;
    OVScrollArea* area_;
    OVLabel* placeholder_;
    OVStreamingText* text_;
    OVLabel* blank_;
    OVErrorNote* error_;
    Subscription changes_;
    Subscription thinkingChanges_;
    Subscription newError_;
};

}  // namespace ovrin
