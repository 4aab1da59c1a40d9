// A text of the windows that cannot be selected, in a theme colour.
#pragma once

#include <QLabel>
#include <cstdint>

#include "theme/type_scale.h"
#include "views/components/view_environment.h"

namespace ovrin {

class OVLabel final : public QLabel {
    Q_OBJECT

public:
    enum class Lines : std::uint8_t {
        one,     // as wide as it is
        wrapped  // as high as it has to be for its width
    };

    OVLabel(ViewEnvironment& environment, const QString& text, const theme::FontStyle& style, theme::ColorToken color,
            Lines lines = Lines::one, QWidget* parent = nullptr);

    void setColor(theme::ColorToken color);

private:
    void applyColor();

    ViewEnvironment& environment_;
    theme::ColorToken color_;
};

}  // namespace ovrin
