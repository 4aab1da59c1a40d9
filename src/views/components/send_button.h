// The round button that sends a question.
#pragma once

#include "views/components/ov_button.h"

namespace ovrin {

class SendButton final : public OVButtonBase {
    Q_OBJECT

public:
    // label is its name for assistive technology and its tooltip.
    SendButton(ViewEnvironment& environment, const QString& label, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {28, 28}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace ovrin
