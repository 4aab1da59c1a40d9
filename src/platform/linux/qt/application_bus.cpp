#include "platform/linux/qt/application_bus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QTimer>
#include <chrono>
#include <optional>
#include <utility>

#include "base/environment.h"
#include "platform/linux/desktop/activation_token.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/desktop/session_bus.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds patience = 2s;

constexpr const char* introspection =
    "<interface name=\"org.freedesktop.Application\">"
    "<method name=\"Activate\"><arg type=\"a{sv}\" direction=\"in\"/></method>"
    "<method name=\"Open\"><arg type=\"as\" direction=\"in\"/><arg type=\"a{sv}\" direction=\"in\"/></method>"
    "<method name=\"ActivateAction\"><arg type=\"s\" direction=\"in\"/><arg type=\"av\" direction=\"in\"/>"
    "<arg type=\"a{sv}\" direction=\"in\"/></method>"
    "</interface>";

QVariantMap platformData(const Environment& environment) {
    QVariantMap data;
    const auto add = [&data](const char* key, const std::optional<std::string>& value) {
        if (value) data.insert(QLatin1String(key), QString::fromStdString(*value));
    };
    add(activation::tokenKey, activation::token(environment));
    add(activation::startupKey, activation::startupId(environment));
    return data;
}

// The last argument of each of the calls. Compositors take either name's value for a token.
std::string tokenOf(const QDBusMessage& message) {
    if (message.arguments().isEmpty()) return {};
    const auto data = qdbus_cast<QVariantMap>(message.arguments().last());
    const QString token = data.value(QLatin1String(activation::tokenKey)).toString();
    return (token.isEmpty() ? data.value(QLatin1String(activation::startupKey)).toString() : token).toStdString();
}

QDBusMessage activationCall() {
    QDBusMessage message =
        QDBusMessage::createMethodCall(applicationId, applicationObjectPath, applicationInterface, "Activate");
    message << platformData(Environment::ofProcess());
    message.setAutoStartService(false);
    return message;
}

using Place = ApplicationBus::Place;

Place takeName(const QDBusConnection& bus) {
    const auto request = bus.interface()->registerService(applicationId, QDBusConnectionInterface::DontQueueService);
    if (!request.isValid()) return Place::noBus;
    return request.value() == QDBusConnectionInterface::ServiceRegistered ? Place::ours : Place::taken;
}

bool activateOwner(const QDBusConnection& bus) {
    const QDBusMessage answer = bus.call(activationCall(), QDBus::Block, static_cast<int>(patience.count()));
    return answer.type() == QDBusMessage::ReplyMessage;
}

// An owner that does not answer may just have ended.
Place takeNameOrActivateOwner(const QDBusConnection& bus) {
    const Place place = takeName(bus);
    if (place != Place::taken || activateOwner(bus)) return place;
    const Place later = takeName(bus);
    return later == Place::taken ? Place::silent : later;
}

}  // namespace

class ApplicationBus::Receiver final : public QDBusVirtualObject {
public:
    Receiver(Events events, Launch launch) : events_(std::move(events)), isStartOnItsWay_(launch == Launch::byBus) {}

    QString introspect(const QString& /*path*/) const override { return introspection; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.interface() != QLatin1String(applicationInterface)) return false;
        const bool isStart = std::exchange(isStartOnItsWay_, false);
        const std::string token = tokenOf(message);
        if (!token.empty() && events_.activationTokenReceived) events_.activationTokenReceived(token);
        if (message.member() == QLatin1String("Activate") || message.member() == QLatin1String("Open")) {
            // The answer first: what the event does may end the program.
            connection.send(message.createReply());
            if (!isStart) QTimer::singleShot(0, this, [this] { events_.reopen(); });
            return true;
        }
        if (message.member() != QLatin1String("ActivateAction") || message.arguments().isEmpty()) return false;
        const std::string name = message.arguments().first().toString().toStdString();
        if (!events_.perform(name)) {
            connection.send(message.createErrorReply(QDBusError::InvalidArgs, "no such action"));
            return true;
        }
        connection.send(message.createReply());
        return true;
    }

private:
    Events events_;
    bool isStartOnItsWay_;
};

ApplicationBus::ApplicationBus() = default;

ApplicationBus::~ApplicationBus() {
    if (!receiver_) return;
    QDBusConnection::sessionBus().unregisterService(applicationId);
    QDBusConnection::sessionBus().unregisterObject(applicationObjectPath);
}

ApplicationBus::Place ApplicationBus::claim(Events events, Launch launch) {
    if (sessionBus(Environment::ofProcess()) == SessionBus::none) return Place::noBus;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return Place::noBus;
    auto receiver = std::make_unique<Receiver>(std::move(events), launch);
    // The object before the name: who finds the name finds the object.
    bus.registerVirtualObject(applicationObjectPath, receiver.get());
    const Place place = launch == Launch::byUser ? takeNameOrActivateOwner(bus) : takeName(bus);
    if (place == Place::ours) {
        receiver_ = std::move(receiver);
    } else {
        bus.unregisterObject(applicationObjectPath);
    }
    return place;
}

}  // namespace ovrin
