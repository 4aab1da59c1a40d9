// A server on the loopback interface that does exactly what a test's script says, right or wrong: raw bytes over TCP or
// TLS, on a port of its own choice.
//
// The script runs once for each connection, each on its own thread; when it returns the connection is closed. The
// server's end closes what is still open and waits for the scripts.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <openssl/ssl.h>

#include "fakes/test_certificates.h"

namespace ovrin {

class LoopbackServer {
public:
    class Connection;
    using Script = std::function<void(Connection&)>;

    enum class Address { ipv4, ipv6 };
    // behindProxy: it plays the client's proxy first, so that it can be any host
    enum class Place { reachable, behindProxy };
    struct Options {
        Address address = Address::ipv4;
        std::optional<TestIdentity> identity{};  // with one the server speaks TLS
        Place place = Place::reachable;
    };

    // Throws std::runtime_error when the machine has no such address.
    explicit LoopbackServer(Script script) : LoopbackServer({}, std::move(script)) {}
    LoopbackServer(const Options& options, Script script);
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;
    ~LoopbackServer();

    // path begins with a slash.
    std::string url(const std::string& path = "/") const;
    int port() const { return port_; }

    // Whole requests, in the order in which scripts read them.
    std::vector<std::string> requests() const;
    // Connections that were accepted.
    int connectionCount() const;
    // The protocols that clients offered during the last TLS handshake.
    std::vector<std::string> offeredProtocols() const;
    // Blocks until so many connections have come and gone.
    void waitForEnded(int connections) const;

private:
    void listen(Address address);
    void acceptConnections();
    void serve(int descriptor);
    bool isReached(int descriptor);
    void didBegin(int descriptor);
    void didEnd(int descriptor);
    void useIdentity(const TestIdentity& identity);
    static int chooseProtocol(SSL* tls, const unsigned char** chosen, unsigned char* chosenSize,
                              const unsigned char* offered, unsigned int offeredSize, void* server);

    const Script script_;
    const Address address_;
    const Place place_;
    int listener_ = -1;
    int port_ = 0;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_{nullptr, SSL_CTX_free};

    mutable std::mutex mutex_;  // guards all up to the thread
    mutable std::condition_variable changed_;
    std::vector<std::string> requests_;
    std::vector<std::string> offeredProtocols_;
    std::set<int> open_;
    int acceptedCount_ = 0;
    int endedCount_ = 0;
    bool isClosing_ = false;

    std::thread thread_;
};

class LoopbackServer::Connection {
public:
    // The next request: head and, as long as its Content-Length says, body. Empty when the client has gone.
    std::string readRequest();
    // False when the client has gone.
    bool send(std::string_view bytes);
    // Blocks until the client closes.
    void waitForClose();
    // Whether the client has closed; what it has sent meanwhile is left for readRequest().
    bool isAbandoned() const;
    // Ends the connection with an RST instead of a FIN.
    void reset() const;

private:
    friend class LoopbackServer;
    Connection(LoopbackServer& server, int descriptor, SSL* tls)
        : server_(server), descriptor_(descriptor), tls_(tls) {}

    // Appends what arrives next to received_; false at the end.
    bool receive();

    LoopbackServer& server_;
    const int descriptor_;
    SSL* const tls_;
    std::string received_;
};

// A response with a Content-Length. headers: complete lines, each with its line end.
std::string httpResponse(std::string_view body, std::string_view status = "200 OK", std::string_view headers = {});

}  // namespace ovrin
