#include "platform/linux/qt/status_notifier_item.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <memory>
#include <vector>

#include "platform/linux/qt/dbus_menu.h"
#include "platform/linux/qt/dbus_menu_layout.h"
#include "qt_session.h"

namespace ovrin {
namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");

// A panel that shows an item by the menu that it names.
class Panel {
public:
    explicit Panel(const QString& alsoNamed)
        : service_(watcherName, QStringLiteral("/StatusNotifierWatcher"),
                   [this](const QDBusMessage& call) { return answer(call); }) {
        if (!alsoNamed.isEmpty()) service_.connection().registerService(alsoNamed);
    }

    const QString& item() const { return item_; }

    QVariantList ask(const QString& path, const QString& interface, const QString& method,
                     const QVariantList& arguments) {
        QDBusMessage call = QDBusMessage::createMethodCall(item_, path, interface, method);
        call.setArguments(arguments);
        const QDBusPendingCallWatcher answer(service_.connection().asyncCall(call));
        EXPECT_TRUE(waitUntil([&] { return answer.isFinished(); })) << method.toStdString();
        return answer.reply().arguments();
    }
    QVariantList askMenu(const QString& method, const QVariantList& arguments) {
        return ask(menuPath(), menuInterface, method, arguments);
    }

    QString menuPath() {
        const QVariant properties =
            ask(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.freedesktop.DBus.Properties"),
                QStringLiteral("GetAll"), {itemInterface})
                .value(0);
        return qdbus_cast<QVariantMap>(properties).value("Menu").value<QDBusObjectPath>().path();
    }

    // The menu as it would draw it.
    QStringList lines() {
        const QVariantList answer = askMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()});
        shown_ = qdbus_cast<DBusMenuLine>(answer.value(1));
        return linesOf(shown_, {});
    }
    int idOf(int index) const { return shown_.children.value(index).id; }
    bool aboutToShow(int id = 0) { return askMenu(QStringLiteral("AboutToShow"), {id}).value(0).toBool(); }
    void send(int id, const QString& event) {
        askMenu(QStringLiteral("Event"),
                {id, event, QVariant::fromValue(QDBusVariant(QString())), QVariant::fromValue(0U)});
    }

private:
    QDBusMessage answer(const QDBusMessage& call) {
        if (call.member() == QLatin1String("RegisterStatusNotifierItem")) item_ = call.arguments().value(0).toString();
        if (call.member() == QLatin1String("Get")) return call.createReply(QVariant::fromValue(QDBusVariant(true)));
        return call.createReply();
    }

    static QStringList linesOf(const DBusMenuLine& line, const QString& indentation) {
        QStringList result;
        for (const DBusMenuLine& child : line.children) {
            QString text = child.properties.value("type", child.properties.value("label")).toString();
            const auto keys = qdbus_cast<QList<QStringList>>(child.properties.value("shortcut"));
            if (!keys.isEmpty()) text += " " + keys.first().join('-');
            if (!child.properties.value("enabled", true).toBool()) text = "(" + text + ")";
            if (child.properties.value("icon-data").toByteArray().startsWith("\x89PNG")) text = "* " + text;
            result << indentation + text << linesOf(child, indentation + "  ");
        }
        return result;
    }

    FakeService service_;
    QString item_;
    DBusMenuLine shown_;
};

class StatusNotifierItemTest : public testing::Test {
protected:
    void SetUp() override {
        QtSession::ofProcess();
        menu = std::make_unique<DBusMenu>(
            DBusMenu::Source{.makeMenu = [this] { return lines; }, .png = [](OVIcon) { return "\x89PNG"; }});
        item = std::make_unique<StatusNotifierItem>(DBusMenu::path);
        QObject::connect(menu.get(), &DBusMenu::aboutToShow, [this] { ++openings; });
        QObject::connect(menu.get(), &DBusMenu::closed, [this](const std::function<void()>& action) {
            ++closings;
            if (action) action();
        });
        menu->start();
        item->start();
    }

    void showIn(const QString& alsoNamed = {}) {
        panel.emplace(alsoNamed);
        ASSERT_TRUE(waitUntil([this] { return !panel->item().isEmpty(); })) << "the item is not offered";
    }

    int chosen = 0;
    Menu lines{
        {.title = "截图_OCR",
         .icon = OVIcon::sparkles,
         .keyEquivalent = "Super+Shift+T",
         .shortcut = KeyboardShortcuts::Shortcut(
             KeyboardShortcuts::Key::t, KeyboardShortcuts::Modifiers::command | KeyboardShortcuts::Modifiers::shift),
         .action = [this] { chosen = 1; }},
        MenuItem::separator(),
        {.title = "剪贴板", .submenu = {{.title = "inner", .action = [this] { chosen = 2; }}}},
        {.title = "检查", .isEnabled = false, .action = [this] { chosen = 3; }}};
    int openings = 0;
    int closings = 0;
    std::unique_ptr<DBusMenu> menu;
    std::unique_ptr<StatusNotifierItem> item;
    std::optional<Panel> panel;
};

TEST_F(StatusNotifierItemTest, APanelThatDemandsAMenuGetsIt) {
    showIn();
    EXPECT_EQ(panel->menuPath(), DBusMenu::path);
    EXPECT_EQ(panel->lines(), (QStringList{"* 截图__OCR Shift-Super-T", "separator", "剪贴板", "  inner", "(检查)"}));
    EXPECT_EQ(openings, 0) << "asking for the lines opens nothing";

    EXPECT_FALSE(panel->aboutToShow()) << "nothing is new";
    EXPECT_EQ(openings, 1);
    EXPECT_FALSE(panel->aboutToShow(panel->idOf(2)));
    EXPECT_EQ(openings, 1) << "a submenu is part of the menu";
    const int former = panel->idOf(0);
    lines.insert(lines.begin(), {.title = "正在识别文字", .isEnabled = false});
    EXPECT_TRUE(panel->aboutToShow());
    EXPECT_EQ(panel->lines().first(), "(正在识别文字)");
    EXPECT_NE(panel->idOf(0), former);

    panel->send(panel->idOf(3), "closed");
    panel->send(0, "closed");
    EXPECT_TRUE(waitUntil([this] { return closings > 0; }));
    EXPECT_EQ(closings, 1);
    panel->send(panel->idOf(4), "clicked");
    panel->send(former, "clicked");  // by a panel that has not asked for the new lines yet
    EXPECT_TRUE(waitUntil([this] { return chosen > 0; }));
    EXPECT_EQ(chosen, 1);
    EXPECT_EQ(closings, 2);
}

TEST_F(StatusNotifierItemTest, APanelThatAsksAndGoesAwayHasClosedTheMenu) {
    showIn();
    panel->aboutToShow();
    panel.reset();
    EXPECT_TRUE(waitUntil([this] { return closings == 1; }));
}

TEST_F(StatusNotifierItemTest, TellsWhereItWasClickedOnAndWhichHostsHearClicks) {
    std::vector<std::optional<QPoint>> places;
    const auto add = [&](std::optional<QPoint> place) { places.push_back(place); };
    QObject::connect(item.get(), &StatusNotifierItem::activated, add);
    QObject::connect(item.get(), &StatusNotifierItem::menuRequested, add);
    showIn(QStringLiteral("org.gnome.Shell"));
    EXPECT_TRUE(waitUntil([this] { return item->opensMenuOnLeftClick(); }));
    for (const QPoint place : {QPoint(7, 9), QPoint()}) {
        panel->ask("/StatusNotifierItem", itemInterface, "Activate", {place.x(), place.y()});
        panel->ask("/StatusNotifierItem", itemInterface, "ContextMenu", {place.x(), place.y()});
    }
    using Places = std::vector<std::optional<QPoint>>;
    EXPECT_EQ(places, (Places{QPoint(7, 9), QPoint(7, 9), std::nullopt, std::nullopt}));
    panel.reset();
    showIn();
    EXPECT_TRUE(waitUntil([this] { return !item->opensMenuOnLeftClick(); }));
}

}  // namespace
}  // namespace ovrin
