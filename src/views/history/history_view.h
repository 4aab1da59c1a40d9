// Everything inside the history's window: the header with the search, the filters, and the list or what stands in place
// of an empty one.
#pragma once

#include <QPointer>
#include <string>
#include <vector>

#include "base/published.h"
#include "views/components/ov_widget.h"

class QStackedLayout;

namespace ovrin {

class HistoryList;
class HistoryViewModel;
class OVAlert;
class OVAnimatedIcon;
class OVButton;
class OVChoiceBar;
class OVLabel;
class OVTextField;
class SlidingExchange;

class HistoryView final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it.
    HistoryView(ViewEnvironment& environment, HistoryViewModel& viewModel, const Published<std::string>& brandImage);

    void focusSearch();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeTitle(const Published<std::string>& brandImage);
    QWidget* makeControls();
    QWidget* makeEmptyState();
    void addShortcuts();
    void bind();
    void showListOrEmptyState();
    void showConfirmation(bool isWanted);

    HistoryViewModel& viewModel_;
    OVTextField* search_;
    OVButton* deleteAll_;
    OVChoiceBar* filters_;
    QWidget* content_;
    QStackedLayout* pages_;
    HistoryList* list_;
    OVAnimatedIcon* emptyIcon_;
    OVLabel* emptyHeadline_;
    SlidingExchange* exchange_;
    QPointer<OVAlert> confirmation_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace ovrin
