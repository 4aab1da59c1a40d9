// The round button that sends a question.
#pragma once

#include "views/components/ov_button.h"

namespace ovrin {

class SendButton final : public OVButtonBase {
    Q_OBJECT

public:
    explicit SendButton(ViewEnvironment& environment, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {28, 28}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace ovrin
