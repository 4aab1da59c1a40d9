#include "views/components/ov_menu_style.h"

#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QStyleFactory>
#include <QStyleOptionMenuItem>
#include <cmath>

#include "views/components/drawing.h"
#include "views/components/view_environment.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int panelMargin = 5;
constexpr int rowHeight = 28;
constexpr int separatorHeight = 11;
constexpr int iconSize = 15;
constexpr int padding = 9;      // inside a row, at both ends
constexpr int iconGap = 9;      // between icon and title
constexpr int columnGap = 28;   // between the titles and what stands at their right
constexpr int arrowWidth = 14;  // kept free in every row, so that key equivalents line up with arrows
constexpr double rowRadius = 6;

}  // namespace

OVMenuStyle& OVMenuStyle::shared(ViewEnvironment& environment) {
    auto* style = environment.findChild<OVMenuStyle*>();
    if (style == nullptr) {
        style = new OVMenuStyle(environment);
        style->setParent(&environment);
    }
    return *style;
}

OVMenuStyle::OVMenuStyle(const ViewEnvironment& environment)
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))), environment_(environment) {}

int OVMenuStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
        case PM_MenuPanelWidth:
            return 0;
        case PM_MenuHMargin:
        case PM_MenuVMargin:
            return panelMargin;
        case PM_SmallIconSize:
            return iconSize;
        case PM_SubMenuOverlap:
            return -2;  // a hair of space between the two pages
        case PM_MenuScrollerHeight:
            return rowHeight;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int OVMenuStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returnData) const {
    switch (hint) {
        case SH_Menu_MouseTracking:
        case SH_Menu_Scrollable:
        case SH_Menu_SloppySubMenus:
        case SH_Menu_KeyboardSearch:
        case SH_Menu_SupportsSections:
            return 1;
        case SH_Menu_AllowActiveAndDisabled:
        case SH_Menu_FadeOutOnHide:
        case SH_Menu_FlashTriggeredItem:
            return 0;
        case SH_Menu_SubMenuPopupDelay:
            return 120;
        default:
            return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

QSize OVMenuStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                    const QWidget* widget) const {
    const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (type != CT_MenuItem || item == nullptr) return QProxyStyle::sizeFromContents(type, option, size, widget);
    if (item->menuItemType == QStyleOptionMenuItem::Separator) return {size.width(), separatorHeight};
    const int text = item->fontMetrics.horizontalAdvance(item->text.section('\t', 0, 0));
    // The menu itself adds the width of the widest key equivalent.
    return {padding + iconSize + iconGap + text + columnGap + arrowWidth + padding, rowHeight};
}

void OVMenuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    // The menu draws its page itself.
    if (element == PE_PanelMenu || element == PE_FrameMenu) return;
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void OVMenuStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    if (element == CE_MenuEmptyArea || element == CE_MenuHMargin || element == CE_MenuVMargin) return;
    const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuItem && item != nullptr) return drawItem(*item, *painter);
    QProxyStyle::drawControl(element, option, painter, widget);
}

void OVMenuStyle::drawItem(const QStyleOptionMenuItem& item, QPainter& painter) const {
    const auto color = [this](ColorToken token) { return environment_.color(token); };
    const QRectF row = item.rect;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        QColor line = color(ColorToken::ink);
        line.setAlphaF(0.1F);
        constexpr int above = separatorHeight / 2;
        painter.fillRect(QRectF(row.left() + padding, row.top() + above, row.width() - 2 * padding, 1), line);
        painter.restore();
        return;
    }
    const bool isEnabled = item.state.testFlag(State_Enabled);
    const bool isSelected = isEnabled && item.state.testFlag(State_Selected);
    if (isSelected) fillRounded(painter, row, rowRadius, color(ColorToken::accentTint));

    const QRectF inside = row.adjusted(padding, 0, -padding, 0);
    const QIcon::Mode mode = !isEnabled ? QIcon::Disabled : isSelected ? QIcon::Selected : QIcon::Normal;
    const double iconTop = std::round(row.center().y() - iconSize / 2.0);
    painter.drawPixmap(QPointF(inside.left(), iconTop),
                       item.icon.pixmap(QSize(iconSize, iconSize), painter.device()->devicePixelRatioF(), mode));

    painter.setFont(item.font);
    painter.setPen(color(isEnabled ? ColorToken::ink : ColorToken::ink3));
    painter.drawText(inside.adjusted(iconSize + iconGap, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextHideMnemonic,
                     item.text.section('\t', 0, 0));
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        drawSubmenuArrow(inside, color(isSelected ? ColorToken::ink : ColorToken::ink3), painter);
    } else {
        painter.setPen(color(isSelected ? ColorToken::ink2 : ColorToken::ink3));
        painter.drawText(inside, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, item.text.section('\t', 1));
    }
    painter.restore();
}

void OVMenuStyle::drawSubmenuArrow(const QRectF& row, const QColor& color, QPainter& painter) const {
    const QPointF tip(row.right() - 0.75, row.center().y());
    QPainterPath arrow(tip + QPointF(-4, -4));
    arrow.lineTo(tip);
    arrow.lineTo(tip + QPointF(-4, 4));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(arrow);
}

}  // namespace ovrin
