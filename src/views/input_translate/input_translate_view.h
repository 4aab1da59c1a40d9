// Everything inside the input translation's window: the header, the two texts side by side, what can be done with them.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class InputPane;
class InputTranslateViewModel;
class OVButton;

class InputTranslateView final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it.
    InputTranslateView(ViewEnvironment& environment, InputTranslateViewModel& viewModel,
                       const Published<std::string>& brandImage);

    void focusInput();

signals:
    void closeRequested();

private:
    QWidget* makePanes();
    QWidget* makeBottomBar();
    void addShortcut();
    void bind();
    void refresh();

    InputTranslateViewModel& viewModel_;
    InputPane* input_;
    OVButton* clear_;
    OVButton* start_;
    Subscription changes_;
};

}  // namespace ovrin
