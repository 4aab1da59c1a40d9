#include "platform/linux/qt/application_bus.h"

#include <QDBusPendingCallWatcher>
#include <QThread>
#include <utility>

#include "platform/linux/desktop/application_name.h"
#include "qt_session.h"

namespace ovrin {
namespace {

enum class Behaviour { answers, hangs, ends };

// An assistant that has come first, with a thread of its own.
class FirstAssistant final : public QDBusVirtualObject {
public:
    explicit FirstAssistant(Behaviour behaviour) : behaviour_(behaviour) {
        connection_.registerVirtualObject(applicationObjectPath, this);
        connection_.registerService(applicationId);
        moveToThread(&thread_);
        thread_.start();
    }
    FirstAssistant(const FirstAssistant&) = delete;
    FirstAssistant& operator=(const FirstAssistant&) = delete;
    ~FirstAssistant() override {
        leave();
        thread_.quit();
        thread_.wait();
    }

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (behaviour_ == Behaviour::answers) connection.send(message.createReply());
        if (behaviour_ == Behaviour::ends) leave();
        return true;
    }

private:
    static constexpr const char* connectionName = "first assistant";

    void leave() {
        connection_ = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(connectionName);
    }

    Behaviour behaviour_;
    QDBusConnection connection_ =
        QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), connectionName);
    QThread thread_;
};

TEST(ApplicationBusTest, ASecondAssistantSeesHowTheFirstOneDoes) {
    QtSession::ofProcess();
    const auto claim = [] { return ApplicationBus().claim({}); };
    EXPECT_EQ(claim(), ApplicationBus::Place::ours);
    for (const auto& [behaviour, place] : {std::pair(Behaviour::answers, ApplicationBus::Place::taken),
                                           std::pair(Behaviour::hangs, ApplicationBus::Place::silent),
                                           std::pair(Behaviour::ends, ApplicationBus::Place::ours)}) {
        const FirstAssistant first(behaviour);
        EXPECT_EQ(claim(), place);
    }
    // What comes with the session leaves the first one alone, whatever that does.
    const FirstAssistant first(Behaviour::hangs);
    EXPECT_EQ(ApplicationBus().claim({}, Launch::withSession), ApplicationBus::Place::taken);
}

TEST(ApplicationBusTest, TheActivationThatStartedItIsNoReopening) {
    QtSession::ofProcess();
    int reopenings = 0;
    std::string token;
    ApplicationBus bus;
    ASSERT_EQ(bus.claim({.reopen = [&] { ++reopenings; },
                         .perform = [](const std::string&) { return true; },
                         .activationTokenReceived = [&](const std::string& received) { token = received; }},
                        Launch::byBus),
              ApplicationBus::Place::ours);
    const FakeService launcher(QStringLiteral("test.Launcher"), QStringLiteral("/"), {});
    const auto activate = [&] {
        QDBusMessage call =
            QDBusMessage::createMethodCall(applicationId, applicationObjectPath, applicationInterface, "Activate");
        call << QVariantMap{{"desktop-startup-id", "startup"}, {"activation-token", "token"}};
        const QDBusPendingCallWatcher answer(QDBusConnection(QStringLiteral("test.Launcher")).asyncCall(call));
        EXPECT_TRUE(waitUntil([&] { return answer.isFinished(); }));
        QCoreApplication::processEvents();
    };
    activate();
    EXPECT_EQ(reopenings, 0);
    activate();
    EXPECT_EQ(reopenings, 1);
    EXPECT_EQ(token, "token") << "of the two the one of Wayland";
}

}  // namespace
}  // namespace ovrin
