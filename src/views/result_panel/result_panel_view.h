// Everything inside the result panel's window: title bar, what is read or the translated picture, composer.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"
#include "windows/result_panel_view_model.h"

class QVBoxLayout;

namespace ovrin {

class ImageOverlayView;
class OVScrollArea;
class ResultPanelComposer;

class ResultPanelView final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it.
    ResultPanelView(ViewEnvironment& environment, ResultPanelViewModel& viewModel,
                    const Published<std::string>& brandImage);

    void focusComposer();

signals:
    void closeRequested();

private:
    void followNews();
    void showReadingOrOverlay();

    ResultPanelViewModel& viewModel_;
    OVScrollArea* reading_;
    ImageOverlayView* overlay_ = nullptr;  // made when it is first asked for
    ResultPanelComposer* composer_;
    QVBoxLayout* column_;
    Subscription showing_;
    Subscription translating_;
    Subscription streaming_;
};

}  // namespace ovrin
