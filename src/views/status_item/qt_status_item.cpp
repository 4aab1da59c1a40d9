#include "views/status_item/qt_status_item.h"

#include <QBuffer>
#include <QCursor>
#include <QSystemTrayIcon>
#include <QTimer>
#include <chrono>
#include <utility>

#include "platform/linux/qt/qt_screens.h"
#include "views/components/drawing.h"
#include "views/status_item/status_bar_icon.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

// Until a panel that has just appeared has drawn itself.
constexpr auto timeToDraw = 1500ms;

// Panels that can't be looked at: these desktops have dark ones in either appearance.
bool hasDarkPanelAlways() {
    const QByteArray desktop = qgetenv("XDG_CURRENT_DESKTOP");
    return desktop.contains("GNOME") || desktop.contains("Unity") || desktop.contains("Pantheon") ||
           desktop.contains("X-Cinnamon");
}

// A picture for menus of panels, in twice the size at which they show it. Their ground may be light or dark: the grey
// has a contrast of 3.8 to #fafafa and of 3.6 to #2b2b2b.
QByteArray hostIcon(OVIcon icon) {
    constexpr int side = 16;
    constexpr double pixelsPerPoint = 2;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    iconPixmap(icon, side, QColor(0x80, 0x80, 0x80), pixelsPerPoint).save(&buffer, "PNG");
    return png;
}

}  // namespace

QtStatusItem::QtStatusItem(ViewEnvironment& environment, const KeyboardLayout& layout, X11Tray& tray)
    : environment_(environment),
      layout_(layout),
      tray_(tray),
      hostMenu_({.makeMenu = [this] { return events_.makeMenu ? events_.makeMenu() : Menu(); }, .png = hostIcon}),
      notifierItem_(DBusMenu::path) {
    connect(&environment_, &ViewEnvironment::changed, this, &QtStatusItem::updateTint);
    connect(&notifierItem_, &StatusNotifierItem::hostChanged, this, &QtStatusItem::chooseHost);
    connect(&notifierItem_, &StatusNotifierItem::activated, this, &QtStatusItem::handleLeftClick);
    connect(&notifierItem_, &StatusNotifierItem::menuRequested, this, &QtStatusItem::handleRightClick);
    connect(&hostMenu_, &DBusMenu::aboutToShow, this, &QtStatusItem::hostMenuWillOpen);
    connect(&hostMenu_, &DBusMenu::opened, this, [this] {
        if (events_.hostMenuDidOpen) events_.hostMenuDidOpen();
    });
    connect(&hostMenu_, &DBusMenu::closed, this, &QtStatusItem::hostMenuClosed);
    connect(&tray_, &X11Tray::changed, this, &QtStatusItem::chooseHost);
    updateTint();
    drawIcon();
    hostMenu_.start();
    notifierItem_.start();
}

QtStatusItem::~QtStatusItem() {
    delete menu_;
}

void QtStatusItem::chooseHost() {
    using Host = StatusNotifierItem::Host;
    leftClick_.set(notifierItem_.opensMenuOnLeftClick() ? LeftClick::opensHostMenu : LeftClick::isHeard);
    if (notifierItem_.host() == Host::unknown) return;
    const bool isOnBus = notifierItem_.host() == Host::there;
    const bool canEmbed = !isOnBus && tray_.embedsIcons();
    if (!canEmbed) embedded_.reset();
    if (canEmbed && !embedded_) embed();
    if (isOnBus || canEmbed) QTimer::singleShot(timeToDraw, this, &QtStatusItem::updateTint);
    visibility_.set(isOnBus || canEmbed ? Visibility::shown : Visibility::nowhere);
}

// Only when there is nobody on the bus: the toolkit decides once, at its first icon, which way to go.
void QtStatusItem::embed() {
    embedded_ = std::make_unique<QSystemTrayIcon>();
    connect(embedded_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger) handleLeftClick(std::nullopt);
        if (reason == QSystemTrayIcon::Context) handleRightClick(std::nullopt);
    });
    drawIcon();
    embedded_->setToolTip(toolTip_);
    embedded_->show();
}

void QtStatusItem::handleLeftClick(std::optional<QPoint> place) {
    clickPlace_ = place;
    updateTint();
    if (events_.leftClicked) events_.leftClicked();
}

void QtStatusItem::handleRightClick(std::optional<QPoint> place) {
    clickPlace_ = place;
    updateTint();
    if (events_.rightClicked) events_.rightClicked();
}

void QtStatusItem::setAlpha(double alpha) {
    if (alpha == alpha_) return;
    alpha_ = alpha;
    drawIcon();
}

void QtStatusItem::setToolTip(std::string text) {
    toolTip_ = toQString(text);
    notifierItem_.setToolTip(toolTip_);
    if (embedded_) embedded_->setToolTip(toolTip_);
}

void QtStatusItem::showMenu(Menu menu) {
    QTimer::singleShot(0, this, [this, menu = std::move(menu)] { openMenu(menu); });
}

void QtStatusItem::openMenu(const Menu& menu) {
    if (menu_) menu_->close();
    if (events_.menuWillOpen) events_.menuWillOpen();
    menu_ = new StatusMenu(environment_, layout_, menu);
    connect(menu_, &StatusMenu::closed, this, [this, menu = menu_.data()](const std::function<void()>& action) {
        // One that another has taken the place of is told of late.
        if (menu == menu_ && events_.menuDidClose) events_.menuDidClose();
        if (action) action();
    });
    menu_->popUp(clickPlace_ ? toPoints(*clickPlace_) : QCursor::pos());
}

void QtStatusItem::hostMenuWillOpen() {
    updateTint();
    if (events_.hostMenuWillOpen) events_.hostMenuWillOpen();
}

void QtStatusItem::hostMenuClosed(const std::function<void()>& action) const {
    if (events_.menuDidClose) events_.menuDidClose();
    if (action) action();
}

void QtStatusItem::updateTint() {
    const auto fallback = hasDarkPanelAlways() ? theme::Appearance::dark : environment_.settings().appearance;
    if (std::exchange(panel_, tray_.appearance().value_or(fallback)) != panel_) drawIcon();
}

void QtStatusItem::drawIcon() {
    const QList<QImage> sizes = statusBarImages(toQColor(theme::color(theme::ColorToken::ink, panel_)), alpha_);
    notifierItem_.setIcon(sizes);
    if (embedded_) embedded_->setIcon(toQIcon(sizes));
}

}  // namespace ovrin
