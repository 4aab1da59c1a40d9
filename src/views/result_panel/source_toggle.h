// The line "原文" that reveals the source text below a translation.
#pragma once

#include "views/components/ov_button.h"
#include "views/components/spring_animation.h"

namespace ovrin {

class SourceToggle final : public OVButtonBase {
    Q_OBJECT

public:
    // Checkable: checked is revealed.
    explicit SourceToggle(ViewEnvironment& environment, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SpringAnimation turn_;  // of the arrow, 0 to 1
};

}  // namespace ovrin
