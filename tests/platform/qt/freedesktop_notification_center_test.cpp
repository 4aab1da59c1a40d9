#include "platform/linux/qt/freedesktop_notification_center.h"

#include <QStringList>
#include <QVariant>
#include <optional>
#include <vector>

#include "qt_session.h"

namespace ovrin {
namespace {

class NotificationsTest : public testing::Test {
protected:
    QDBusMessage answer(const QDBusMessage& call) {
        if (call.member() == "GetCapabilities") return call.createReply(capabilities);
        notified.push_back(call.arguments());
        return call.createReply(static_cast<uint>(notified.size()));
    }

    QtSession& session = QtSession::ofProcess();
    QStringList capabilities;
    std::vector<QVariantList> notified;  // the arguments of every call of Notify
    std::optional<FakeService> service;
    FreedesktopNotificationCenter notifications;

    void startService() {
        service.emplace("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                        [this](const QDBusMessage& call) { return answer(call); });
    }
};

TEST_F(NotificationsTest, TheDesktopIsToldWhoNotifiesAndWhat) {
    startService();
    notifications.add({.identifier = "1", .title = "截图 OCR 完成", .body = "已识别 2 段文字并复制到剪贴板。"});
    ASSERT_TRUE(waitUntil([this] { return notified.size() == 1; }));
    const QVariantList& arguments = notified.front();
    EXPECT_EQ(arguments[0], "Ovrin");
    EXPECT_EQ(arguments[1], 0U) << "replaces none";
    EXPECT_EQ(arguments[2], "com.quel.ovrin");
    EXPECT_EQ(arguments[3], "截图 OCR 完成");
    EXPECT_EQ(arguments[4], "已识别 2 段文字并复制到剪贴板。");
    const auto hints = qdbus_cast<QVariantMap>(arguments[6]);
    EXPECT_EQ(hints["desktop-entry"], "com.quel.ovrin");
    EXPECT_EQ(hints["suppress-sound"], true);
}

TEST_F(NotificationsTest, TextIsEscapedOnlyWhereItWouldBeTakenForMarkup) {
    startService();
    notifications.add({.identifier = "1", .title = "a < b & c", .body = "a < b & <b>c</b>"});
    ASSERT_TRUE(waitUntil([this] { return notified.size() == 1; }));
    EXPECT_EQ(notified[0][4], "a < b & <b>c</b>");
    capabilities = {"body", "body-markup"};
    notifications.add({.identifier = "2", .title = "a < b & c", .body = "a < b & <b>c</b>"});
    ASSERT_TRUE(waitUntil([this] { return notified.size() == 2; }));
    EXPECT_EQ(notified[1][4], "a &lt; b &amp; &lt;b&gt;c&lt;/b&gt;");
    EXPECT_EQ(notified[1][3], "a < b & c") << "titles are never markup";
}

TEST_F(NotificationsTest, OnlyTheNotificationThatTheUserActivatesIsAnsweredAndOnlyOnce) {
    const auto invoke = [this](uint id, const char* action) {
        service->emitSignal("org.freedesktop.Notifications", "ActionInvoked", {id, action});
    };
    startService();
    std::vector<int> activated;
    for (const int number : {1, 2, 3}) {
        notifications.add(
            {.identifier = std::to_string(number), .title = "title", .body = "", .activated = [&activated, number] {
                 activated.push_back(number);
             }});
        ASSERT_TRUE(waitUntil([&] { return notified.size() == static_cast<std::size_t>(number); }));
    }
    EXPECT_EQ(notified[0][5].toStringList(), (QStringList{"default", "打开"}));
    invoke(2, "other");
    service->emitSignal("org.freedesktop.Notifications", "NotificationClosed", {1U, 2U});
    invoke(1, "default");
    invoke(2, "default");
    invoke(2, "default");
    invoke(3, "default");
    ASSERT_TRUE(waitUntil([&] { return !activated.empty() && activated.back() == 3; }));
    EXPECT_EQ(activated, (std::vector{2, 3}));

    service.reset();
    startService();
    notifications.add({.identifier = "4", .title = "title", .body = "", .activated = [&] { activated.push_back(4); }});
    ASSERT_TRUE(waitUntil([this] { return notified.size() == 4; }));
    invoke(1, "default");
    invoke(4, "default");
    ASSERT_TRUE(waitUntil([&] { return activated.back() == 4; }));
    EXPECT_EQ(activated, (std::vector{2, 3, 4}));
}

}  // namespace
}  // namespace ovrin
