// The answer of a desktop portal, which comes as a signal of a request that the portal makes.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <cstdint>
#include <utility>

#include "base/async_stream.h"

namespace ovrin {

// Main thread.
class PortalRequest final : public QObject {
    Q_OBJECT

public:
    enum class Response : std::uint8_t { success, cancelled, other };

    // Hears the answer from now on: it may come before the portal's reply to the call that carries the token.
    explicit PortalRequest(QDBusConnection bus);
    ~PortalRequest() override;
    PortalRequest(const PortalRequest&) = delete;
    PortalRequest& operator=(const PortalRequest&) = delete;

    // The value of the call's option "handle_token".
    const QString& token() const { return token_; }

    // One value, when the user has answered; none when the portal goes before that.
    AsyncStream<Response>& response() { return response_.first; }

private slots:
    void didRespond(uint response, const QVariantMap& results);

private:
    QDBusConnection bus_;
    QString token_;
    QString path_;
    std::pair<AsyncStream<Response>, StreamWriter<Response>> response_ = makeStream<Response>();
};

}  // namespace ovrin
