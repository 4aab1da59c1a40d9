#include <QDBusVariant>
#include <QMap>
#include <optional>

#include "fakes/x_test_server.h"
#include "platform/linux/desktop/desktop_hints.h"
#include "platform/linux/qt/linux_desktop_settings.h"
#include "platform/linux/qt/settings_portal.h"
#include "platform/linux/x11/x11_connection.h"
#include "qt_session.h"

namespace ovrin {
namespace {

using theme::Appearance;

TEST(DesktopHints, TheFirstVoiceWithAPreferenceDecides) {
    const auto appearance = [](const DesktopHints& hints) { return hints.appearance(); };
    EXPECT_EQ(appearance({}), Appearance::light);
    EXPECT_EQ(appearance({.isPaletteDark = true}), Appearance::dark);
    EXPECT_EQ(appearance({.portalColorScheme = 2, .colorScheme = "prefer-dark", .isPaletteDark = true}),
              Appearance::light);
    EXPECT_EQ(appearance({.portalColorScheme = 0, .colorScheme = "prefer-dark"}), Appearance::dark);
    EXPECT_EQ(appearance({.colorScheme = "prefer-light", .gtkTheme = "Adwaita-dark"}), Appearance::light);
    EXPECT_EQ(appearance({.colorScheme = "default", .gtkTheme = "Yaru-blue-dark"}), Appearance::dark);
    EXPECT_EQ(appearance({.colorScheme = "default", .gtkTheme = "Materia-dark-compact"}), Appearance::dark);
    EXPECT_EQ(appearance({.gtkTheme = "Arc-Darker"}), Appearance::light) << "its windows are light";
}

TEST(DesktopHints, AnyVoiceCanAskForLessMotion) {
    EXPECT_FALSE(DesktopHints{}.reducesMotion());
    EXPECT_FALSE((DesktopHints{.enablesAnimations = true, .animationDurationFactor = 0.5}.reducesMotion()));
    EXPECT_TRUE((DesktopHints{.prefersReducedMotion = true, .enablesAnimations = true}.reducesMotion()));
    EXPECT_TRUE((DesktopHints{.enablesAnimations = false}.reducesMotion()));
    EXPECT_TRUE((DesktopHints{.animationDurationFactor = 0}.reducesMotion()));
}

class DesktopSettingsTest : public testing::Test {
protected:
    void startPortal(const SettingsPortal::Settings& settings) {
        qDBusRegisterMetaType<SettingsPortal::Settings>();
        portal.emplace(
            "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
            [settings](const QDBusMessage& call) { return call.createReply(QVariant::fromValue(settings)); });
    }
    void change(const QString& group, const QString& key, const QVariant& value) {
        portal->emitSignal("org.freedesktop.portal.Settings", "SettingChanged",
                           {group, key, QVariant::fromValue(QDBusVariant(value))});
    }
    static bool becomes(const LinuxDesktopSettings& settings, Appearance appearance) {
        return waitUntil([&] { return settings.current()->appearance == appearance; });
    }

    QtSession& session = QtSession::ofProcess();
    std::optional<FakeService> portal;
};

TEST_F(DesktopSettingsTest, FollowsThePortal) {
    startPortal({{"org.freedesktop.appearance", {{"color-scheme", 1U}}},
                 {"org.gnome.desktop.interface", {{"enable-animations", true}}}});
    const LinuxDesktopSettings settings;
    EXPECT_EQ(settings.current()->appearance, Appearance::light) << "nothing waits for the desktop";
    EXPECT_TRUE(becomes(settings, Appearance::dark));
    change("org.freedesktop.appearance", "color-scheme", 2U);
    EXPECT_TRUE(becomes(settings, Appearance::light));
    change("org.gnome.desktop.interface", "enable-animations", false);
    EXPECT_TRUE(waitUntil([&] { return settings.current()->reducesMotion; }));
    change("org.freedesktop.appearance", "color-scheme", "nonsense");
    change("org.gnome.desktop.interface", "gtk-theme", "Adwaita-dark");
    EXPECT_TRUE(becomes(settings, Appearance::dark));
}

TEST_F(DesktopSettingsTest, FollowsTheCompositor) {
    if (!XTestServer::isInstalled()) GTEST_SKIP() << "Xvfb is not installed (Debian package xvfb)";
    const XTestServer server;
    const LinuxDesktopSettings settings(server.display());
    EXPECT_FALSE(settings.current()->isComposited);

    xcb_connection_t* const compositor = xcb_connect(server.display(), nullptr);
    const xcb_atom_t atom = atomNamed(compositor, "_NET_WM_CM_S0");
    const xcb_window_t window = xcb_generate_id(compositor);
    xcb_create_window(compositor, 0, window, server.root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
    xcb_set_selection_owner(compositor, window, atom, XCB_CURRENT_TIME);
    xcb_flush(compositor);
    EXPECT_TRUE(waitUntil([&] { return settings.current()->isComposited; }));

    xcb_disconnect(compositor);  // as if it had crashed
    EXPECT_TRUE(waitUntil([&] { return !settings.current()->isComposited; }));
}

}  // namespace
}  // namespace ovrin
