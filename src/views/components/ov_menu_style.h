// How menus are drawn: rows of 28 points with rounded highlights on a rounded page.
#pragma once

#include <QProxyStyle>

class QStyleOptionMenuItem;

namespace ovrin {

class ViewEnvironment;

class OVMenuStyle final : public QProxyStyle {
    Q_OBJECT

public:
    static constexpr double cornerRadius = 10;  // points, of the whole menu

    // The one for all menus of the environment, which owns it.
    static OVMenuStyle& shared(ViewEnvironment& environment);

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;

private:
    explicit OVMenuStyle(const ViewEnvironment& environment);
    void drawItem(const QStyleOptionMenuItem& item, QPainter& painter) const;
    void drawSubmenuArrow(const QRectF& row, const QColor& color, QPainter& painter) const;

    const ViewEnvironment& environment_;
};

}  // namespace ovrin
