#include "views/status_item/status_menu.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cctype>
#include <utility>

#include "platform/linux/qt/window_role.h"
#include "views/components/drawing.h"
#include "views/components/key_modifiers.h"

namespace ovrin {

namespace {

constexpr int gapToPanel = 4;  // points

QString textOf(const MenuItem& item) {
    // An ampersand would mark a letter, a tab would end the title.
    QString text = toQString(item.title).simplified().replace('&', QStringLiteral("&&"));
    if (!item.keyEquivalent.empty()) text += '\t' + toQString(item.keyEquivalent);
    return text;
}

// Where a menu of the size goes: from the pointer towards the middle of the screen, and off the panel that the pointer
// is on.
QPoint placeOf(const QSize& size, const QPoint& pointer) {
    const QScreen* screen = QGuiApplication::screenAt(pointer);
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    const QRect room = screen->availableGeometry().adjusted(gapToPanel, gapToPanel, -gapToPanel, -gapToPanel);
    const auto place = [](int at, int length, int begin, int end) {
        if (at + length <= end) return std::max(at, begin);
        return std::max(begin, std::min(at, end) - length);
    };
    return {place(pointer.x(), size.width(), room.left(), room.right() + 1),
            place(pointer.y(), size.height(), room.top(), room.bottom() + 1)};
}

}  // namespace

StatusMenu::StatusMenu(ViewEnvironment& environment, const KeyboardLayout& layout, const Menu& items)
    : OVMenu(environment), layout_(layout) {
    fill(*this, items);
    connect(this, &QMenu::aboutToHide, this, [this] {
        // The choice is told after the menu has gone.
        QTimer::singleShot(0, this, [this] {
            emit closed(chosen_);
            deleteLater();
        });
    });
}

void StatusMenu::popUp(const QPoint& pointer) {
    ensurePolished();
    popup(placeOf(sizeHint(), pointer));
    holdInput(*this);
}

void StatusMenu::fill(OVMenu& menu, const Menu& items) {
    menu.installEventFilter(this);
    for (const MenuItem& item : items) addItem(menu, item);
}

void StatusMenu::addItem(OVMenu& menu, const MenuItem& item) {
    if (item.isSeparator()) {
        menu.addSeparator();
        return;
    }
    if (!item.submenu.empty()) {
        OVMenu* const submenu = menu.addSubmenu(textOf(item));
        if (item.icon) menu.setItemIcon(*submenu->menuAction(), *item.icon);
        fill(*submenu, item.submenu);
        return;
    }
    QAction* const action = menu.addAction(textOf(item));
    action->setEnabled(item.isEnabled);
    if (item.icon) menu.setItemIcon(*action, *item.icon);
    connect(action, &QAction::triggered, this, [this, chosen = item.action] { chosen_ = chosen; });
    if (item.isEnabled && (item.shortcut || item.controlKey)) {
        keyedItems_.push_back({item.shortcut, item.controlKey, item.action});
    }
}

bool StatusMenu::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && chooseByKeys(static_cast<const QKeyEvent&>(*event))) return true;
    return OVMenu::eventFilter(watched, event);
}

bool StatusMenu::chooseByKeys(const QKeyEvent& event) {
    const auto key = layout_.key(event.nativeScanCode());
    const auto modifiers = shortcutModifiers(event.modifiers());
    const auto isMeant = [&](const KeyedItem& item) {
        if (item.shortcut && key && *item.shortcut == KeyboardShortcuts::Shortcut(*key, modifiers)) return true;
        return item.controlKey && modifiers == KeyboardShortcuts::Modifiers::control &&
               event.key() == std::toupper(static_cast<unsigned char>(*item.controlKey));
    };
    const auto item = std::ranges::find_if(keyedItems_, isMeant);
    if (item == keyedItems_.end()) return false;
    chosen_ = item->action;
    close();
    return true;
}

}  // namespace ovrin
