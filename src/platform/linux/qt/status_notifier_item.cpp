#include "platform/linux/qt/status_notifier_item.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QVariantMap>
#include <array>
#include <utility>

#include "base/environment.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/qt/status_notifier_pixmap.h"
#include "platform/linux/qt/window_role.h"

namespace ovrin {

namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

constexpr const char* introspection =
    "<interface name=\"org.kde.StatusNotifierItem\">"
    "<method name=\"Activate\"><arg type=\"i\" direction=\"in\"/><arg type=\"i\" direction=\"in\"/></method>"
    "<method name=\"ContextMenu\"><arg type=\"i\" direction=\"in\"/><arg type=\"i\" direction=\"in\"/></method>"
    "<method name=\"SecondaryActivate\"><arg type=\"i\" direction=\"in\"/><arg type=\"i\" direction=\"in\"/></method>"
    "<method name=\"ProvideXdgActivationToken\"><arg type=\"s\" direction=\"in\"/></method>"
    "<method name=\"Scroll\"><arg type=\"i\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/></method>"
    "<property name=\"Category\" type=\"s\" access=\"read\"/><property name=\"Id\" type=\"s\" access=\"read\"/>"
    "<property name=\"Title\" type=\"s\" access=\"read\"/><property name=\"Status\" type=\"s\" access=\"read\"/>"
    "<property name=\"IconName\" type=\"s\" access=\"read\"/>"
    "<property name=\"IconPixmap\" type=\"a(iiay)\" access=\"read\"/>"
    "<property name=\"ToolTip\" type=\"(sa(iiay)ss)\" access=\"read\"/>"
    "<property name=\"ItemIsMenu\" type=\"b\" access=\"read\"/><property name=\"Menu\" type=\"o\" access=\"read\"/>"
    "<signal name=\"NewIcon\"/><signal name=\"NewToolTip\"/>"
    "</interface>";

// Who also shows the status area opens menus on a left click: GNOME's shell with its extension, and the services behind
// the indicators of Ayatana, MATE and Unity.
const std::array<QString, 3> menuHosts{QStringLiteral("org.gnome.Shell"),
                                       QStringLiteral("org.ayatana.indicator.application"),
                                       QStringLiteral("com.canonical.indicator.application")};

// Of the item, in the form that hosts expect of a process with one item.
QString serviceName() {
    return QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
}

QDBusMessage requestToWatcher(const QString& interface, const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(watcherService, watcherPath, interface, method);
    message.setArguments(arguments);
    return message;
}

}  // namespace

// What the bus sees of the item.
class StatusNotifierItem::BusObject final : public QDBusVirtualObject {
public:
    BusObject(StatusNotifierItem& item, const QString& menuPath) : item_(item) {
        qDBusRegisterMetaType<StatusNotifierPixmap>();
        qDBusRegisterMetaType<StatusNotifierPixmaps>();
        qDBusRegisterMetaType<StatusNotifierToolTip>();
        const QVariant noPixmaps = QVariant::fromValue(StatusNotifierPixmaps());
        properties_ = {
            {"Category", "ApplicationStatus"},
            {"Id", "ovrin"},
            {"Title", "Ovrin"},
            {"Status", "Active"},
            {"WindowId", 0},
            {"IconThemePath", ""},
            {"IconName", ""},
            {"IconPixmap", noPixmaps},
            {"OverlayIconName", ""},
            {"OverlayIconPixmap", noPixmaps},
            {"AttentionIconName", ""},
            {"AttentionIconPixmap", noPixmaps},
            {"AttentionMovieName", ""},
            {"ToolTip", QVariant::fromValue(StatusNotifierToolTip())},
            {"ItemIsMenu", false},
            {"Menu", QVariant::fromValue(QDBusObjectPath(menuPath))},
        };
    }

    void set(const QString& property, const QVariant& value, const QString& signal) {
        properties_[property] = value;
        QDBusConnection::sessionBus().send(QDBusMessage::createSignal(itemPath, itemInterface, signal));
    }

    QString introspect(const QString& /*path*/) const override { return introspection; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.interface() == propertiesInterface) return handleProperties(message, connection);
        if (message.interface() != itemInterface) return false;
        const QString method = message.member();
        // The answer first: what the click does may take its time.
        connection.send(message.createReply());
        if (method == QLatin1String("ProvideXdgActivationToken"))
            setActivationToken(message.arguments().value(0).toString().toStdString());
        if (method == QLatin1String("Activate")) emit item_.activated(placeIn(message));
        if (method == QLatin1String("ContextMenu")) emit item_.menuRequested(placeIn(message));
        return true;
    }

private:
    // Hosts that don't know send zeros.
    static std::optional<QPoint> placeIn(const QDBusMessage& message) {
        const QPoint place(message.arguments().value(0).toInt(), message.arguments().value(1).toInt());
        return place.isNull() ? std::nullopt : std::optional(place);
    }

    bool handleProperties(const QDBusMessage& message, const QDBusConnection& connection) const {
        if (message.member() == QLatin1String("GetAll")) {
            connection.send(message.createReply(QVariant(properties_)));
            return true;
        }
        const QString name = message.arguments().value(1).toString();
        if (message.member() != QLatin1String("Get") || !properties_.contains(name)) return false;
        connection.send(message.createReply(QVariant::fromValue(QDBusVariant(properties_[name]))));
        return true;
    }

    StatusNotifierItem& item_;
    QVariantMap properties_;
};

StatusNotifierItem::StatusNotifierItem(const QString& menuPath) {
    if (sessionBus(Environment::ofProcess()) != SessionBus::none) {
        object_ = std::make_unique<BusObject>(*this, menuPath);
    }
}

StatusNotifierItem::~StatusNotifierItem() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!object_ || !bus.isConnected()) return;
    bus.unregisterObject(itemPath);
    bus.interface()->asyncCall(QStringLiteral("ReleaseName"), serviceName());
}

void StatusNotifierItem::start() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!object_ || !bus.isConnected()) return setHost(Host::none);
    bus.registerVirtualObject(itemPath, object_.get());
    constexpr uint doNotQueue = 4;
    bus.interface()->asyncCall(QStringLiteral("RequestName"), serviceName(), doNotQueue);

    auto* const watcher = new QDBusServiceWatcher(watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &StatusNotifierItem::watcherOwnerChanged);
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus.connect(watcherService, watcherPath, watcherService, QLatin1String(signal), this, SLOT(askForHost()));
    }
    offer();
}

void StatusNotifierItem::watcherOwnerChanged(const QString& /*name*/, const QString& /*oldOwner*/,
                                             const QString& newOwner) {
    setOpensMenuOnLeftClick(false);
    if (newOwner.isEmpty()) return setHost(Host::none);
    offer();
}

// Also to a watcher that has no host yet: it tells the hosts that come later.
void StatusNotifierItem::offer() {
    QDBusMessage offer =
        requestToWatcher(watcherService, QStringLiteral("RegisterStatusNotifierItem"), {serviceName()});
    offer.setAutoStartService(false);
    QDBusConnection::sessionBus().send(offer);
    askForHost();
    askWhoTheHostIs();
}

void StatusNotifierItem::askForHost() {
    QDBusMessage question = requestToWatcher(propertiesInterface, QStringLiteral("Get"),
                                             {watcherService, QStringLiteral("IsStatusNotifierHostRegistered")});
    question.setAutoStartService(false);
    auto* const call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, &StatusNotifierItem::hostAnswered);
}

void StatusNotifierItem::hostAnswered(QDBusPendingCallWatcher* call) {
    const QDBusPendingReply<QDBusVariant> reply = *call;
    call->deleteLater();
    // One that is slow may be there all the same.
    const auto error = reply.error().type();
    if (error == QDBusError::NoReply || error == QDBusError::TimedOut || error == QDBusError::Timeout) return;
    const bool isThere = !reply.isError() && reply.value().variant().toBool();
    setHost(isThere ? Host::there : Host::none);
}

void StatusNotifierItem::askWhoTheHostIs() {
    askForOwner(watcherService, [this](const QString& owner) { compareOwners(owner); });
}

void StatusNotifierItem::compareOwners(const QString& watcherOwner) {
    for (const QString& name : menuHosts) {
        askForOwner(name, [this, watcherOwner](const QString& owner) {
            if (owner == watcherOwner) setOpensMenuOnLeftClick(true);
        });
    }
}

// The handler gets the owner's name on the bus; it is not called when there is none.
void StatusNotifierItem::askForOwner(const QString& name, const std::function<void(const QString&)>& handler) {
    const QDBusPendingCall call =
        QDBusConnection::sessionBus().interface()->asyncCall(QStringLiteral("GetNameOwner"), name);
    auto* const watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [handler](QDBusPendingCallWatcher* answered) {
        const QDBusPendingReply<QString> reply = *answered;
        answered->deleteLater();
        if (!reply.isError()) handler(reply.value());
    });
}

void StatusNotifierItem::setOpensMenuOnLeftClick(bool opens) {
    if (std::exchange(opensMenuOnLeftClick_, opens) != opens) emit hostChanged();
}

void StatusNotifierItem::setHost(Host host) {
    if (host == host_) return;
    host_ = host;
    emit hostChanged();
}

void StatusNotifierItem::setIcon(const QList<QImage>& sizes) {
    if (!object_) return;
    StatusNotifierPixmaps pixmaps;
    for (const QImage& image : sizes) pixmaps.append(StatusNotifierPixmap::of(image));
    object_->set(QStringLiteral("IconPixmap"), QVariant::fromValue(pixmaps), QStringLiteral("NewIcon"));
}

void StatusNotifierItem::setToolTip(const QString& text) {
    if (!object_) return;
    // Hosts take the text for markup in part; the title is plain for all of them.
    const StatusNotifierToolTip toolTip{.title = text};
    object_->set(QStringLiteral("ToolTip"), QVariant::fromValue(toolTip), QStringLiteral("NewToolTip"));
}

}  // namespace ovrin
