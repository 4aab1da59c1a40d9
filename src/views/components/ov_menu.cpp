#include "views/components/ov_menu.h"

#include <QAction>
#include <QIcon>
#include <QPainter>

#include "platform/linux/qt/window_role.h"
#include "views/components/drawing.h"
#include "views/components/ov_menu_style.h"
#include "views/components/ov_window_background.h"

namespace ovrin {

using theme::ColorToken;

OVMenu::OVMenu(ViewEnvironment& environment, QWidget* parent) : QMenu(parent), environment_(environment) {
    setStyle(&OVMenuStyle::shared(environment));
    setFont(toQFont(theme::font::body));
    giveRole(*this, WindowRole::menu);
    setAttribute(Qt::WA_TranslucentBackground);
    connect(&environment_, &ViewEnvironment::changed, this, qOverload<>(&QWidget::update));
}

OVMenu* OVMenu::addSubmenu(const QString& title) {
    auto* const submenu = new OVMenu(environment_, this);
    submenu->setTitle(title);
    addMenu(submenu);
    return submenu;
}

void OVMenu::setItemIcon(QAction& item, OVIcon icon) const {
    const double ratio = devicePixelRatioF();
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    QIcon pictures;
    const auto add = [&](QIcon::Mode mode, ColorToken token) {
        pictures.addPixmap(iconPixmap(icon, size, environment_.color(token), ratio), mode);
    };
    add(QIcon::Normal, ColorToken::ink2);
    add(QIcon::Selected, ColorToken::ink);
    add(QIcon::Disabled, ColorToken::ink3);
    item.setIcon(pictures);
}

void OVMenu::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        drawWindowBackground(painter, rect(), OVMenuStyle::cornerRadius, environment_);
    }
    QMenu::paintEvent(event);
}

void OVMenu::resizeEvent(QResizeEvent* event) {
    QMenu::resizeEvent(event);
    if (environment_.settings().isComposited) return clearMask();
    setMask(roundedShape(size(), OVMenuStyle::cornerRadius));
}

}  // namespace ovrin
