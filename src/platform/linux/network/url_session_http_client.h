// The network over libcurl: HTTP/1.1 and HTTP/2, compression, the proxies of the process's environment, the system's
// certificates, connections kept for the next request.
//
// Cookies and .netrc are not used. Headers that frame the body (Content-Length, Transfer-Encoding, Expect) are the
// transport's own: a request's are left out.
//
// A body's stream holds what has arrived and was not read: whoever opens one reads it promptly or drops it. Readers on
// loop() take every piece before more is received.
#pragma once

#include "base/environment.h"
#include "base/event_loop.h"
#include "base/task.h"
#include "platform/http_client.h"
#include "platform/linux/network/http_transfer.h"
#include "platform/linux/network/network_loop.h"

namespace ovrin {

class URLSessionHTTPClient final : public HTTPClientProtocol {
public:
    // When the environment's SSL_CERT_FILE names a PEM file, its authorities are trusted instead of the system's.
    explicit URLSessionHTTPClient(const Environment& environment);
    // Ends all requests with CancellationError and lets the tasks on loop() come to their end; what those tasks use
    // must still exist.
    ~URLSessionHTTPClient() override = default;

    // The network's own loop, for work that belongs next to it: building requests, decoding bodies.
    EventLoop& loop() { return session_; }

    Task<HTTPData> data(HTTPRequest request) override;
    Task<HTTPBytes> bytes(HTTPRequest request) override;

private:
    const HTTPTransfer::Settings settings_;
    NetworkLoop session_;  // last: its tasks may use the rest until it is gone
};

}  // namespace ovrin
