// An icon as a template picture in a theme colour, moving a little under the pointer when asked to. Hidden from
// accessibility: the control around it carries the label.
#pragma once

#include "theme/ov_icon.h"
#include "views/components/ov_widget.h"
#include "views/components/spring_animation.h"

namespace ovrin {

class OVAnimatedIcon final : public OVWidget {
public:
    enum class Hover : std::uint8_t { still, animates };

    // size is the side of the glyph in points.
    OVAnimatedIcon(ViewEnvironment& environment, OVIcon icon, double size, theme::ColorToken color,
                   Hover hover = Hover::still, QWidget* parent = nullptr);

    void setIcon(OVIcon icon);
    void setColor(theme::ColorToken color);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    OVIcon icon_;
    double size_;
    theme::ColorToken color_;
    Hover hover_;
    SpringAnimation motion_;
};

}  // namespace ovrin
