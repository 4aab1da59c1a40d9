// The lower edge of the result panel: suggested questions, and the field for the user's own.
#pragma once

#include <vector>

#include "base/published.h"
#include "language/ai_action.h"
#include "views/components/ov_widget.h"

class QHBoxLayout;

namespace ovrin {

class OVButton;
class OVIconButton;
class QuestionComposer;
class ResultPanelViewModel;

class ResultPanelComposer final : public OVWidget {
    Q_OBJECT

public:
    // The view model outlives it.
    ResultPanelComposer(ViewEnvironment& environment, ResultPanelViewModel& viewModel, QWidget* parent = nullptr);

    void focusField();

signals:
    // The user has asked something.
    void submitted();
    // A key that moves through the text above was pressed in the field.
    void scrollKeyPressed(QKeyEvent* event);

private:
    void addSuggestions(QHBoxLayout& row);
    void bind();
    void refresh();
    void submit(const std::string& question, AIAction action);
    void submitPrompt();

    ResultPanelViewModel& viewModel_;
    QuestionComposer* composer_;
    OVIconButton* clear_;
    std::vector<OVButton*> suggestions_;
    Subscription prompt_;
    Subscription changes_;
};

}  // namespace ovrin
