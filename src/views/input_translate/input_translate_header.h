// The upper edge of the window: the mark, the language of what was translated, the one to translate into.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"

class QHBoxLayout;

namespace ovrin {

class InputTranslateViewModel;
class OVIconButton;
class OVPicker;
class OVStatusPill;

class InputTranslateHeader final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it.
    InputTranslateHeader(ViewEnvironment& environment, InputTranslateViewModel& viewModel,
                         const Published<std::string>& brandImage, QWidget* parent = nullptr);

signals:
    void closeRequested();

private:
    void addBrand(QHBoxLayout& row, const Published<std::string>& brandImage);
    void addControls(QHBoxLayout& row);
    void bind();
    void refresh();

    InputTranslateViewModel& viewModel_;
    OVStatusPill* detected_;
    OVPicker* target_;
    OVIconButton* swap_;
    Subscription changes_;
};

}  // namespace ovrin
