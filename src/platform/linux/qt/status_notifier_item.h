// The program's item in a status area that works over the session bus (org.kde.StatusNotifierItem): icon, tooltip, and
// the clicks on it. It has no menu of its own: hosts tell when one is asked for. Nothing here waits for another
// program; hosts may come, go and come again.
#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>

class QDBusPendingCallWatcher;

namespace ovrin {

class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    enum class Host : std::uint8_t { unknown, none, there };

    StatusNotifierItem();
    ~StatusNotifierItem() override;

    // Looks for hosts and offers them the item, now and whenever one appears. hostChanged() follows.
    void start();

    // Whether anything shows the item.
    Host host() const { return host_; }

    // One picture per size; hosts choose.
    void setIcon(const QList<QImage>& sizes);
    void setToolTip(const QString& text);

signals:
    void hostChanged();
    void activated();      // the left button
    void menuRequested();  // the right button

private slots:
    void watcherOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
    void askForHost();

private:
    class BusObject;

    void offer();
    void hostAnswered(QDBusPendingCallWatcher* call);
    void setHost(Host host);

    std::unique_ptr<BusObject> object_;  // null without a session bus
    Host host_ = Host::unknown;
};

}  // namespace ovrin
