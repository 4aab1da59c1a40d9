#include "views/components/ov_menu.h"

#include <QBitmap>
#include <QPainter>

#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int cornerRadius = 10;

QString css(const QColor& color) {
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(color.alphaF(), 0, 'f', 3);
}

}  // namespace

OVMenu::OVMenu(ViewEnvironment& environment, QWidget* parent) : QMenu(parent), environment_(environment) {
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setFont(toQFont(theme::font::body));
    QColor background = environment.color(ColorToken::canvas);
    background.setAlpha(255);
    QColor line = environment.color(ColorToken::ink);
    line.setAlphaF(environment.isDark() ? 0.16F : 0.12F);
    setStyleSheet(QStringLiteral("QMenu { background: %1; border: 1px solid %2; border-radius: %3px; padding: 5px; }"
                                 "QMenu::item { color: %4; padding: 6px 28px 6px 12px; border-radius: 6px; }"
                                 "QMenu::item:selected { background: %5; }"
                                 "QMenu::item:disabled { color: %6; background: transparent; }"
                                 "QMenu::separator { height: 1px; background: %2; margin: 5px 8px; }")
                      .arg(css(background), css(line), QString::number(cornerRadius),
                           css(environment.color(ColorToken::ink)), css(environment.color(ColorToken::hover)),
                           css(environment.color(ColorToken::ink3))));
}

void OVMenu::resizeEvent(QResizeEvent* event) {
    QMenu::resizeEvent(event);
    if (environment_.settings().isComposited) return clearMask();
    QBitmap shape(size());
    shape.fill(Qt::color0);
    QPainter painter(&shape);
    fillRounded(painter, QRectF(rect()), cornerRadius, Qt::color1);
    painter.end();
    setMask(shape);
}

}  // namespace ovrin
