#include "platform/linux/qt/dbus_menu.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QTimer>
#include <utility>

#include "base/environment.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/qt/dbus_menu_layout.h"

namespace ovrin {

namespace {

const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

constexpr const char* introspection =
    "<interface name=\"com.canonical.dbusmenu\">"
    "<property name=\"Version\" type=\"u\" access=\"read\"/>"
    "<property name=\"TextDirection\" type=\"s\" access=\"read\"/>"
    "<property name=\"Status\" type=\"s\" access=\"read\"/>"
    "<property name=\"IconThemePath\" type=\"as\" access=\"read\"/>"
    "<method name=\"GetLayout\"><arg type=\"i\" direction=\"in\"/><arg type=\"i\" direction=\"in\"/>"
    "<arg type=\"as\" direction=\"in\"/><arg type=\"u\" direction=\"out\"/>"
    "<arg type=\"(ia{sv}av)\" direction=\"out\"/></method>"
    "<method name=\"GetGroupProperties\"><arg type=\"ai\" direction=\"in\"/><arg type=\"as\" direction=\"in\"/>"
    "<arg type=\"a(ia{sv})\" direction=\"out\"/></method>"
    "<method name=\"GetProperty\"><arg type=\"i\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/>"
    "<arg type=\"v\" direction=\"out\"/></method>"
    "<method name=\"Event\"><arg type=\"i\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/>"
    "<arg type=\"v\" direction=\"in\"/><arg type=\"u\" direction=\"in\"/></method>"
    "<method name=\"EventGroup\"><arg type=\"a(isvu)\" direction=\"in\"/><arg type=\"ai\" direction=\"out\"/></method>"
    "<method name=\"AboutToShow\"><arg type=\"i\" direction=\"in\"/><arg type=\"b\" direction=\"out\"/></method>"
    "<method name=\"AboutToShowGroup\"><arg type=\"ai\" direction=\"in\"/><arg type=\"ai\" direction=\"out\"/>"
    "<arg type=\"ai\" direction=\"out\"/></method>"
    "<signal name=\"ItemsPropertiesUpdated\"><arg type=\"a(ia{sv})\"/><arg type=\"a(ias)\"/></signal>"
    "<signal name=\"LayoutUpdated\"><arg type=\"u\"/><arg type=\"i\"/></signal>"
    "<signal name=\"ItemActivationRequested\"><arg type=\"i\"/><arg type=\"u\"/></signal>"
    "</interface>";

const QVariantMap& properties() {
    static const QVariantMap all{
        {"Version", 3U}, {"TextDirection", "ltr"}, {"Status", "normal"}, {"IconThemePath", QStringList()}};
    return all;
}

}  // namespace

const QString DBusMenu::path = QStringLiteral("/MenuBar");

// What the bus sees of the menu.
class DBusMenu::BusObject final : public QDBusVirtualObject {
public:
    BusObject(DBusMenu& menu, Source source) : menu_(menu), source_(std::move(source)) {
        registerDBusMenuTypes();
        panel_.setConnection(QDBusConnection::sessionBus());
        panel_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        connect(&panel_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { close({}); });
    }

    QString introspect(const QString& /*path*/) const override { return introspection; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const auto answer = message.interface() == propertiesInterface ? propertiesFor(message) : answerTo(message);
        if (!answer) return false;
        connection.send(message.createReply(*answer));
        return true;
    }

private:
    using Answer = std::optional<QVariantList>;

    static Answer propertiesFor(const QDBusMessage& message) {
        if (message.member() == QLatin1String("GetAll")) return QVariantList{properties()};
        const auto found = properties().find(message.arguments().value(1).toString());
        if (message.member() != QLatin1String("Get") || found == properties().end()) return std::nullopt;
        return QVariantList{QVariant::fromValue(QDBusVariant(*found))};
    }

    Answer answerTo(const QDBusMessage& message) {
        const QString method = message.member();
        const QVariantList arguments = message.arguments();
        const int id = arguments.value(0).toInt();
        if (method == QLatin1String("GetLayout")) return layout(id, arguments.value(1), arguments.value(2));
        if (method == QLatin1String("GetGroupProperties")) return groupProperties(arguments);
        if (method == QLatin1String("GetProperty")) return property(id, arguments.value(1).toString());
        if (method == QLatin1String("Event")) {
            handle(id, arguments.value(1).toString());
            return QVariantList();
        }
        if (method == QLatin1String("EventGroup")) return eventGroup(arguments);
        if (method == QLatin1String("AboutToShow")) return QVariantList{prepare(id, message.service())};
        if (method == QLatin1String("AboutToShowGroup")) return prepareGroup(arguments, message.service());
        return std::nullopt;
    }

    Answer layout(int id, const QVariant& depth, const QVariant& names) {
        const DBusMenuLine* const line = root().find(id);
        if (line == nullptr) return std::nullopt;
        const DBusMenuLine excerpt = line->excerpt(depth.toInt(), names.toStringList());
        return QVariantList{revision_, QVariant::fromValue(excerpt)};
    }

    // No numbers stand for all of them.
    Answer groupProperties(const QVariantList& arguments) {
        auto ids = qdbus_cast<QList<int>>(arguments.value(0));
        if (ids.isEmpty()) appendIds(root(), ids);
        QList<DBusMenuProperties> group;
        for (const int id : std::as_const(ids)) {
            const DBusMenuLine* const line = root().find(id);
            if (line == nullptr) continue;
            group.append({.id = id, .properties = line->excerpt(0, arguments.value(1).toStringList()).properties});
        }
        return QVariantList{QVariant::fromValue(group)};
    }

    Answer property(int id, const QString& name) {
        const DBusMenuLine* const line = root().find(id);
        if (line == nullptr || !line->properties.contains(name)) return std::nullopt;
        return QVariantList{QVariant::fromValue(QDBusVariant(line->properties[name]))};
    }

    Answer eventGroup(const QVariantList& arguments) {
        QList<int> unknown;
        for (const DBusMenuEvent& event : qdbus_cast<QList<DBusMenuEvent>>(arguments.value(0))) {
            if (root().find(event.id) == nullptr) unknown.append(event.id);
            handle(event.id, event.name);
        }
        return QVariantList{QVariant::fromValue(unknown)};
    }

    Answer prepareGroup(const QVariantList& arguments, const QString& panel) {
        QList<int> changed;
        QList<int> unknown;
        for (const int id : qdbus_cast<QList<int>>(arguments.value(0))) {
            if (root().find(id) == nullptr) unknown.append(id);
            if (prepare(id, panel)) changed.append(id);
        }
        return QVariantList{QVariant::fromValue(changed), QVariant::fromValue(unknown)};
    }

    // Whether the panel has to ask for the line's children again.
    bool prepare(int id, const QString& panel) {
        if (id != DBusMenuLayout::rootId) return false;
        panel_.setWatchedServices({panel});
        emit menu_.aboutToShow();
        return rebuild();
    }

    // A panel that has not asked for the lines again yet shows the former ones, which go on working. Lines that look
    // the same keep their numbers, so that nothing flickers.
    bool rebuild() {
        DBusMenuLayout made = DBusMenuLayout::of(source_.makeMenu(), source_.png, lastId_);
        if (layout_.root.looksLike(made.root)) return false;
        former_ = std::move(layout_);
        layout_ = std::move(made);
        ++revision_;
        return true;
    }

    // Some panels ask for the lines before anything is to be shown.
    const DBusMenuLine& root() {
        if (revision_ == 0) rebuild();
        return layout_.root;
    }

    // What happens to a submenu is part of the menu.
    void handle(int id, const QString& event) {
        if (event == QLatin1String("opened") && id == DBusMenuLayout::rootId) emit menu_.opened();
        if (event == QLatin1String("closed") && id == DBusMenuLayout::rootId) close({});
        if (event != QLatin1String("clicked")) return;
        for (const DBusMenuLayout* const shown : {&layout_, &former_}) {
            const auto action = shown->actions.find(id);
            if (action != shown->actions.end()) return close(action->second);
        }
    }

    // After the answer to the panel: what an action does may take its time.
    void close(const std::function<void()>& action) {
        panel_.setWatchedServices({});
        QTimer::singleShot(0, this, [this, action] { emit menu_.closed(action); });
    }

    static void appendIds(const DBusMenuLine& line, QList<int>& ids) {
        ids.append(line.id);
        for (const DBusMenuLine& child : line.children) appendIds(child, ids);
    }

    DBusMenu& menu_;
    Source source_;
    QDBusServiceWatcher panel_;  // the one that may be showing the menu
    DBusMenuLayout layout_;
    DBusMenuLayout former_;
    int lastId_ = DBusMenuLayout::rootId;
    uint revision_ = 0;
};

DBusMenu::DBusMenu(Source source) {
    if (sessionBus(Environment::ofProcess()) == SessionBus::none) return;
    object_ = std::make_unique<BusObject>(*this, std::move(source));
}

DBusMenu::~DBusMenu() {
    if (object_) QDBusConnection::sessionBus().unregisterObject(path);
}

void DBusMenu::start() {
    if (object_) QDBusConnection::sessionBus().registerVirtualObject(path, object_.get());
}

}  // namespace ovrin
