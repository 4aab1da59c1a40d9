#include "platform/linux/qt/portal_request.h"

#include <QDBusServiceWatcher>
#include <QUuid>

namespace ovrin {

namespace {
const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
}  // namespace

// The portal makes its path of the caller's name on the bus and the token.
PortalRequest::PortalRequest(QDBusConnection bus)
    : bus_(std::move(bus)), token_(QStringLiteral("ovrin") + QUuid::createUuid().toString(QUuid::Id128)) {
    QString caller = bus_.baseService().mid(1);
    caller.replace(QLatin1Char('.'), QLatin1Char('_'));
    path_ = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(caller, token_);
    bus_.connect(service, path_, requestInterface, QStringLiteral("Response"), this,
                 SLOT(didRespond(uint, QVariantMap)));
    auto* const watcher = new QDBusServiceWatcher(service, bus_, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { response_.second.finish(); });
}

PortalRequest::~PortalRequest() = default;

void PortalRequest::didRespond(uint response, const QVariantMap& /*results*/) {
    constexpr uint success = 0;
    constexpr uint cancelled = 1;
    response_.second.push(response == success     ? Response::success
                          : response == cancelled ? Response::cancelled
                                                  : Response::other);
    response_.second.finish();
}

}  // namespace ovrin
