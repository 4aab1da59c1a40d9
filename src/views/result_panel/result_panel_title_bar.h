// The upper edge of the result panel: the mark, the language of the source, and what can be done with the text.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"

class QHBoxLayout;

namespace ovrin {

class OVButton;
class OVIconButton;
class ResultPanelViewModel;

class ResultPanelTitleBar final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it.
    ResultPanelTitleBar(ViewEnvironment& environment, ResultPanelViewModel& viewModel,
                        const Published<std::string>& brandImage, QWidget* parent = nullptr);

signals:
    void closeRequested();

private:
    void addBrand(QHBoxLayout& row, const Published<std::string>& brandImage);
    void addActions(QHBoxLayout& row);
    void refresh();

    ResultPanelViewModel& viewModel_;
    OVButton* translate_ = nullptr;
    OVIconButton* overlay_ = nullptr;
    Subscription changes_;
};

}  // namespace ovrin
