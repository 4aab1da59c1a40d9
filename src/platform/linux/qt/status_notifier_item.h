// The program's item in a status area that works over the session bus (org.kde.StatusNotifierItem): icon, tooltip, and
// the clicks on it. It names a menu, without which some hosts show no item, and which most show by themselves; others
// tell that it is asked for. A token that comes with a click lets the next window come to the front. Nothing here
// waits for another program; hosts may come, go and come again.
#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class QDBusPendingCallWatcher;

namespace ovrin {

class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    enum class Host : std::uint8_t { unknown, none, there };

    // menuPath: of a com.canonical.dbusmenu on the same connection.
    explicit StatusNotifierItem(const QString& menuPath);
    ~StatusNotifierItem() override;

    // Looks for hosts and offers them the item, now and whenever one appears. hostChanged() follows.
    void start();

    // Whether anything shows the item.
    Host host() const { return host_; }

    // Whether the host opens the menu on a left click too, so that no activated() comes of it.
    bool opensMenuOnLeftClick() const { return opensMenuOnLeftClick_; }

    // One picture per size; hosts choose.
    void setIcon(const QList<QImage>& sizes);
    void setToolTip(const QString& text);

signals:
    void hostChanged();
    // The left and the right button. place: where, in pixels of the screen; none when the host does not know.
    void activated(std::optional<QPoint> place);
    void menuRequested(std::optional<QPoint> place);

private slots:
    void watcherOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
    void askForHost();

private:
    class BusObject;

    void offer();
    void hostAnswered(QDBusPendingCallWatcher* call);
    void setHost(Host host);
    void askWhoTheHostIs();
    void askForOwner(const QString& name, const std::function<void(const QString&)>& handler);
    void compareOwners(const QString& watcherOwner);
    void setOpensMenuOnLeftClick(bool opens);

    std::unique_ptr<BusObject> object_;  // null without a session bus
    Host host_ = Host::unknown;
    bool opensMenuOnLeftClick_ = false;
};

}  // namespace ovrin
