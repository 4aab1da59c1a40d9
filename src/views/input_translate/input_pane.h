// The half of the window into which the text to be translated is typed or pasted.
#pragma once

#include "base/published.h"
#include "views/input_translate/text_pane.h"

namespace ovrin {

class InputTranslateViewModel;
class OVTextEditor;

class InputPane final : public TextPane {
    Q_OBJECT

public:
    // The view model outlives it.
    InputPane(ViewEnvironment& environment, InputTranslateViewModel& viewModel, QWidget* parent = nullptr);

    void focusEditor();

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    OVTextEditor* editor_;
    Subscription changes_;
};

}  // namespace ovrin
