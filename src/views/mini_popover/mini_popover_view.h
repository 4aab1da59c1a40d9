// What the translation card shows.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class BusyNote;
class MiniPopoverViewModel;
class OVButton;
class OVErrorNote;
class OVIconButton;
class OVLabel;
class OVScrollArea;
class OVStatusPill;
class OVStreamingText;

class MiniPopoverView final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive the view.
    MiniPopoverView(ViewEnvironment& environment, MiniPopoverViewModel& viewModel,
                    const Published<std::string>& brandImage, QWidget* parent = nullptr);

signals:
    void closeRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHeader(const Published<std::string>& brandImage);
    QWidget* makeBody();
    QWidget* makeFooter();
    void bind();
    void refresh();

    MiniPopoverViewModel& viewModel_;
    OVStatusPill* pill_;
    BusyNote* waiting_;
    OVScrollArea* area_;
    OVStreamingText* text_;
    OVLabel* blank_;
    OVErrorNote* error_;
    OVButton* copy_;
    Subscription changes_;
    Subscription thinking_;
    Subscription newError_;
};

}  // namespace ovrin
