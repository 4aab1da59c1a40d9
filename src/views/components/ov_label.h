// A text of the windows that cannot be selected, in a theme colour.
#pragma once

#include <QLabel>
#include <cstdint>

#include "theme/type_scale.h"
#include "views/components/view_environment.h"

class QTextLayout;

namespace ovrin {

class OVLabel final : public QLabel {
    Q_OBJECT

public:
    enum class Lines : std::uint8_t {
        one,     // as wide as it is
        wrapped  // as high as it has to be for its width; a word that is wider than it breaks anywhere
    };

    OVLabel(ViewEnvironment& environment, const QString& text, const theme::FontStyle& style, theme::ColorToken color,
            Lines lines = Lines::one, QWidget* parent = nullptr);

    void setColor(theme::ColorToken color);

    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void applyColor();
    double layOut(QTextLayout& layout, double width) const;
    QSize sizeWithin(double longestLine) const;

    ViewEnvironment& environment_;
    theme::ColorToken color_;
};

}  // namespace ovrin
