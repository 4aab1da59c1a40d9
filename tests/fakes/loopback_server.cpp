#include "fakes/loopback_server.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/bio.h>
#include <openssl/pem.h>
#include <sys/socket.h>
#include <unistd.h>

#include "base/text.h"

namespace ovrin {

namespace {

void check(bool succeeded, const char* what) {
    if (!succeeded) throw std::runtime_error(what);
}

std::size_t contentLength(std::string_view head) {
    const std::string lowerCased = text::asciiLowercased(head);
    constexpr std::string_view name = "\r\ncontent-length:";
    const auto found = lowerCased.find(name);
    return found == std::string::npos ? 0 : std::stoul(lowerCased.substr(found + name.size()));
}

}  // namespace

LoopbackServer::LoopbackServer(const Options& options, Script script)
    : script_(std::move(script)), address_(options.address), place_(options.place) {
    if (options.identity) useIdentity(*options.identity);
    listen(address_);
    thread_ = std::thread([this] { acceptConnections(); });
}

LoopbackServer::~LoopbackServer() {
    {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
        for (const int descriptor : open_) shutdown(descriptor, SHUT_RDWR);
    }
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return open_.empty(); });
}

std::string LoopbackServer::url(const std::string& path) const {
    const std::string host = address_ == Address::ipv6 ? "[::1]" : "127.0.0.1";
    return (tls_ ? "https://" : "http://") + host + ":" + std::to_string(port_) + path;
}

std::vector<std::string> LoopbackServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

int LoopbackServer::connectionCount() const {
    const std::lock_guard lock(mutex_);
    return acceptedCount_;
}

std::vector<std::string> LoopbackServer::offeredProtocols() const {
    const std::lock_guard lock(mutex_);
    return offeredProtocols_;
}

void LoopbackServer::waitForEnded(int connections) const {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return endedCount_ >= connections; });
}

void LoopbackServer::listen(Address address) {
    sockaddr_storage name{};
    auto* const generic = reinterpret_cast<sockaddr*>(&name);
    socklen_t size = 0;
    if (address == Address::ipv6) {
        auto* const ipv6 = reinterpret_cast<sockaddr_in6*>(&name);
        *ipv6 = {.sin6_family = AF_INET6,
                 .sin6_port = 0,
                 .sin6_flowinfo = 0,
                 .sin6_addr = in6addr_loopback,
                 .sin6_scope_id = 0};
        size = sizeof *ipv6;
    } else {
        auto* const ipv4 = reinterpret_cast<sockaddr_in*>(&name);
        ipv4->sin_family = AF_INET;
        ipv4->sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        size = sizeof *ipv4;
    }
    listener_ = socket(name.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener_ < 0 || bind(listener_, generic, size) != 0) {
        close(listener_);
        throw std::runtime_error("no such loopback address");
    }
    check(::listen(listener_, SOMAXCONN) == 0, "listen");
    check(getsockname(listener_, generic, &size) == 0, "getsockname");
    port_ = ntohs(address == Address::ipv6 ? reinterpret_cast<sockaddr_in6*>(&name)->sin6_port
                                           : reinterpret_cast<sockaddr_in*>(&name)->sin_port);
}

void LoopbackServer::acceptConnections() {
    while (true) {
        const int descriptor = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0) return;
        const int yes = 1;
        setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        didBegin(descriptor);
        std::thread([this, descriptor] { serve(descriptor); }).detach();
    }
}

void LoopbackServer::serve(int descriptor) {
    sigset_t pipe;  // raised by the TLS library when the client has gone
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    {
        const std::unique_ptr<SSL, decltype(&SSL_free)> tls(tls_ ? SSL_new(tls_.get()) : nullptr, SSL_free);
        if (tls) SSL_set_fd(tls.get(), descriptor);
        Connection connection(*this, descriptor, tls.get());
        if (isReached(descriptor) && (!tls || SSL_accept(tls.get()) == 1)) script_(connection);
        if (tls && SSL_is_init_finished(tls.get())) SSL_shutdown(tls.get());
    }
    didEnd(descriptor);
}

// A client asks its proxy for a tunnel in clear text, whatever follows in it.
bool LoopbackServer::isReached(int descriptor) {
    if (place_ == Place::reachable) return true;
    Connection proxy(*this, descriptor, nullptr);
    return proxy.readRequest().starts_with("CONNECT ") && proxy.send("HTTP/1.1 200 OK\r\n\r\n");
}

void LoopbackServer::didBegin(int descriptor) {
    const std::lock_guard lock(mutex_);
    ++acceptedCount_;
    open_.insert(descriptor);
    if (isClosing_) shutdown(descriptor, SHUT_RDWR);
}

void LoopbackServer::didEnd(int descriptor) {
    const std::lock_guard lock(mutex_);
    close(descriptor);
    open_.erase(descriptor);
    ++endedCount_;
    changed_.notify_all();
}

void LoopbackServer::useIdentity(const TestIdentity& identity) {
    const auto reader = [](const std::string& text) {
        return std::unique_ptr<BIO, decltype(&BIO_free)>(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())),
                                                         BIO_free);
    };
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(
        PEM_read_bio_X509(reader(identity.certificate).get(), nullptr, nullptr, nullptr), X509_free);
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        PEM_read_bio_PrivateKey(reader(identity.key).get(), nullptr, nullptr, nullptr), EVP_PKEY_free);
    tls_.reset(SSL_CTX_new(TLS_server_method()));
    check(SSL_CTX_use_certificate(tls_.get(), certificate.get()) == 1, "certificate");
    check(SSL_CTX_use_PrivateKey(tls_.get(), key.get()) == 1, "private key");
    SSL_CTX_set_alpn_select_cb(tls_.get(), chooseProtocol, this);
}

int LoopbackServer::chooseProtocol(SSL* /*tls*/, const unsigned char** /*chosen*/, unsigned char* /*chosenSize*/,
                                   const unsigned char* offered, unsigned int offeredSize, void* server) {
    auto& self = *static_cast<LoopbackServer*>(server);
    const std::lock_guard lock(self.mutex_);
    self.offeredProtocols_.clear();
    for (unsigned int at = 0; at < offeredSize; at += offered[at] + 1U) {
        self.offeredProtocols_.emplace_back(reinterpret_cast<const char*>(offered + at + 1), offered[at]);
    }
    return SSL_TLSEXT_ERR_NOACK;
}

std::string LoopbackServer::Connection::readRequest() {
    constexpr std::string_view endOfHead = "\r\n\r\n";
    while (received_.find(endOfHead) == std::string::npos) {
        if (!receive()) return {};
    }
    const std::size_t headSize = received_.find(endOfHead) + endOfHead.size();
    const std::size_t size = headSize + contentLength(received_.substr(0, headSize));
    while (received_.size() < size) {
        if (!receive()) return {};
    }
    std::string request = received_.substr(0, size);
    received_.erase(0, size);
    const std::lock_guard lock(server_.mutex_);
    server_.requests_.push_back(request);
    return request;
}

bool LoopbackServer::Connection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = tls_ ? SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()))
                               : ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void LoopbackServer::Connection::waitForClose() {
    while (receive()) {
    }
}

bool LoopbackServer::Connection::isAbandoned() const {
    char byte = 0;
    const auto received = recv(descriptor_, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return received == 0 || (received < 0 && errno == ECONNRESET);
}

void LoopbackServer::Connection::reset() const {
    const linger immediately{.l_onoff = 1, .l_linger = 0};
    setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &immediately, sizeof immediately);
}

bool LoopbackServer::Connection::receive() {
    std::array<char, 16384> buffer{};
    const auto received = tls_ ? SSL_read(tls_, buffer.data(), static_cast<int>(buffer.size()))
                               : recv(descriptor_, buffer.data(), buffer.size(), 0);
    if (received <= 0) return false;
    received_.append(buffer.data(), static_cast<std::size_t>(received));
    return true;
}

std::string httpResponse(std::string_view body, std::string_view status, std::string_view headers) {
    return std::string("HTTP/1.1 ")
        .append(status)
        .append("\r\nContent-Length: ")
        .append(std::to_string(body.size()))
        .append("\r\n")
        .append(headers)
        .append("\r\n")
        .append(body);
}

}  // namespace ovrin
