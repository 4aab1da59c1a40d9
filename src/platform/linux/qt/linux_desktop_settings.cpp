#include "platform/linux/qt/linux_desktop_settings.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QSocketNotifier>
#include <optional>
#include <string>

#include "base/environment.h"
#include "base/error.h"
#include "platform/linux/desktop/desktop_hints.h"
#include "platform/linux/desktop/gnome_interface_settings.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/qt/settings_portal.h"
#include "platform/linux/x11/x11_selection_owners.h"

namespace ovrin {

namespace {

constexpr const char* compositorSelection = "_NET_WM_CM_S0";
const QString freedesktopGroup = QStringLiteral("org.freedesktop.appearance");
const QString gnomeGroup = QStringLiteral("org.gnome.desktop.interface");
const QString kdeGroup = QStringLiteral("org.kde.kdeglobals.KDE");

// None for a setting that is missing or of another type.
template <typename T>
std::optional<T> converted(QVariant value) {
    if (!value.isValid() || !value.convert(QMetaType::fromType<T>())) return std::nullopt;
    return value.value<T>();
}

std::optional<std::string> text(const QVariant& value) {
    const auto string = converted<QString>(value);
    return string ? std::optional(string->toStdString()) : std::nullopt;
}

void read(const SettingsPortal& portal, DesktopHints& hints) {
    hints.portalColorScheme = converted<uint>(portal.value(freedesktopGroup, QStringLiteral("color-scheme")));
    const auto reducedMotion = converted<uint>(portal.value(freedesktopGroup, QStringLiteral("reduced-motion")));
    if (reducedMotion) hints.prefersReducedMotion = *reducedMotion == 1;
    hints.colorScheme = text(portal.value(gnomeGroup, QStringLiteral("color-scheme")));
    hints.gtkTheme = text(portal.value(gnomeGroup, QStringLiteral("gtk-theme")));
    hints.enablesAnimations = converted<bool>(portal.value(gnomeGroup, QStringLiteral("enable-animations")));
    hints.animationDurationFactor =
        converted<double>(portal.value(kdeGroup, QStringLiteral("AnimationDurationFactor")));
}

void read(const GnomeInterfaceSettings& settings, DesktopHints& hints) {
    hints.colorScheme = settings.colorScheme();
    hints.gtkTheme = settings.gtkTheme();
    hints.enablesAnimations = settings.enablesAnimations();
}

bool isPaletteDark() {
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightnessF() < palette.color(QPalette::WindowText).lightnessF();
}

}  // namespace

class LinuxDesktopSettings::Sources final : public QObject {
public:
    Sources(const char* display, Published<DesktopSettings>& current) : current_(current) {
        followCompositor(display);
        qGuiApp->installEventFilter(this);
        connect(&portal_, &SettingsPortal::changed, this, [this] {
            read(portal_, hints_);
            publish();
        });
        connect(&portal_, &SettingsPortal::unavailable, this, &Sources::askGnome);
        if (sessionBus(Environment::ofProcess()) != SessionBus::none) portal_.start();
        publish();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange) publish();
        return QObject::eventFilter(watched, event);
    }

private:
    void followCompositor(const char* display) {
        if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) return;  // composites by nature
        try {
            owners_.emplace(display, std::vector<std::string>{compositorSelection});
        } catch (const Error&) {
            return;  // the server has gone
        }
        notifier_.emplace(owners_->descriptor(), QSocketNotifier::Read);
        connect(&*notifier_, &QSocketNotifier::activated, this, [this] {
            if (!owners_->process()) notifier_->setEnabled(false);
            publish();
        });
    }

    void askGnome() {
        const auto readAndPublish = [this] {
            read(*gnome_, hints_);
            publish();
        };
        gnome_.emplace(readAndPublish);
        readAndPublish();
    }

    void publish() {
        hints_.isPaletteDark = isPaletteDark();
        current_.set({.appearance = hints_.appearance(),
                      .reducesMotion = hints_.reducesMotion(),
                      .isComposited = !owners_ || owners_->hasOwner(compositorSelection)});
    }

    Published<DesktopSettings>& current_;
    DesktopHints hints_;
    SettingsPortal portal_;
    std::optional<GnomeInterfaceSettings> gnome_;
    std::optional<X11SelectionOwners> owners_;
    std::optional<QSocketNotifier> notifier_;
};

LinuxDesktopSettings::LinuxDesktopSettings(const char* display)
    : sources_(std::make_unique<Sources>(display, current_)) {}

LinuxDesktopSettings::~LinuxDesktopSettings() = default;

}  // namespace ovrin
