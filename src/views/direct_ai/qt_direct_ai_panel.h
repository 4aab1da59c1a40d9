// The window of the free chat.
#pragma once

#include <QVariantAnimation>
#include <string>

#include "base/published.h"
#include "views/components/ov_panel_window.h"
#include "windows/direct_ai_panel.h"

namespace ovrin {

class DirectAIView;

class QtDirectAIPanel final : public OVPanelWindow, public DirectAIPanel {
    Q_OBJECT

public:
    // For MakeDirectAIPanel: in the middle of the screen on which the pointer is. The environment and the name of the
    // brand's picture outlive it.
    QtDirectAIPanel(ViewEnvironment& environment, const Published<std::string>& brandImage,
                    DirectAIViewModel& viewModel, const Form& form, Events events);

    void present() override;
    bool isVisible() const override { return QWidget::isVisible(); }
    // At once for a user who does not want motion. A frame that would leave its screen is moved back onto it.
    void animateTo(const Form& form) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void bindAnimation();
    QRect frameAround(const QRect& old, QSize size) const;

    Events events_;
    DirectAIView* view_;
    QVariantAnimation growth_;  // of the frame, as a rectangle of the screen
    QSize minimumFrame_;        // once it has ended
};

}  // namespace ovrin
