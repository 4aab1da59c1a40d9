// A session for the adapters over the window toolkit: a private bus, an application without a display, and services on
// the bus that the test plays.
#pragma once

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QTimer>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "fakes/private_bus.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

// Runs the event loop until it is so; false when it never becomes so.
inline bool waitUntil(const std::function<bool()>& isSo) {
    constexpr int patience = 20'000;  // milliseconds; only a failing test waits so long
    bool isOver = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&isOver] { isOver = true; });
    timer.start(patience);
    while (!isSo() && !isOver) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return isSo();
}

// One in a process: the toolkit connects to its first session bus only.
class QtSession {
public:
    static QtSession& ofProcess() {
        static QtSession session;
        return session;
    }

private:
    QtSession() {
        qputenv("HOME", home_.path().c_str());
        qputenv("XDG_CONFIG_HOME", home_.path().c_str());
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().c_str());
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("GSETTINGS_BACKEND", "memory");
        application_.emplace(count_, arguments_.data());
    }

    TemporaryDirectory home_;
    PrivateBus bus_;
    std::array<char, 5> name_{"test"};
    std::array<char*, 2> arguments_{name_.data(), nullptr};
    int count_ = 1;
    std::optional<QApplication> application_;
};

// A program on the bus whose every call, to the path and below, the test answers with a reply or an error.
class FakeService final : public QDBusVirtualObject {
public:
    using Answer = std::function<QDBusMessage(const QDBusMessage& call)>;

    FakeService(const QString& name, const QString& path, Answer answer)
        : connection_(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), name)),
          name_(name),
          path_(path),
          answer_(std::move(answer)) {
        connection_.registerVirtualObject(path, this, QDBusConnection::SubPath);
        connection_.registerService(name);
    }
    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;
    ~FakeService() override {
        connection_.unregisterObject(path_);
        connection_ = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(name_);
    }

    void emitSignal(const QString& interface, const QString& member, const QVariantList& arguments) {
        QDBusMessage signal = QDBusMessage::createSignal(path_, interface, member);
        signal.setArguments(arguments);
        connection_.send(signal);
    }
    QDBusConnection& connection() { return connection_; }

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        return connection.send(answer_(message));
    }

private:
    QDBusConnection connection_;
    QString name_;
    QString path_;
    Answer answer_;
};

}  // namespace ovrin
