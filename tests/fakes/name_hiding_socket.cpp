#include "fakes/name_hiding_socket.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {
namespace {

// bind() or connect().
using Use = int (*)(int, const sockaddr*, socklen_t);

int socketAt(const std::filesystem::path& path, Use use) {
    const int made = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    path.string().copy(address.sun_path, sizeof address.sun_path - 1);
    if (use(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return made;
    ::close(made);
    throw Error("no socket at " + path.string());
}

void closePassed(msghdr& message) {
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr; part = CMSG_NXTHDR(&message, part)) {
        for (std::size_t at = 0; at + sizeof(int) <= part->cmsg_len - CMSG_LEN(0); at += sizeof(int)) {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(part) + at, sizeof descriptor);
            ::close(descriptor);
        }
    }
}

}  // namespace

NameHidingSocket::NameHidingSocket(std::filesystem::path path, std::filesystem::path server, std::string name)
    : path_(std::move(path)), server_(std::move(server)), name_(std::move(name)), listening_(socketAt(path_, ::bind)) {
    constexpr int backlog = 16;
    ::listen(listening_, backlog);
    accepting_ = std::thread([this] { accept(); });
}

NameHidingSocket::~NameHidingSocket() {
    std::filesystem::remove(path_);
    ::shutdown(listening_, SHUT_RDWR);
    accepting_.join();
    for (const int end : ends_) ::shutdown(end, SHUT_RDWR);
    for (std::thread& thread : passing_) thread.join();
    ends_.push_back(listening_);
    for (const int end : ends_) ::close(end);
}

void NameHidingSocket::accept() {
    for (int program = 0; (program = ::accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
        try {
            const int server = socketAt(server_, ::connect);
            ends_.insert(ends_.end(), {program, server});
            passing_.emplace_back([this, program, server] { pass(program, server); });
            passing_.emplace_back([this, program, server] { pass(server, program); });
        } catch (const Error&) {
            ::close(program);  // the server has gone
        }
    }
}

// Both protocols write what belongs together at once, so that no name comes in two pieces.
void NameHidingSocket::pass(int from, int to) const {
    std::vector<char> bytes(std::size_t{256} << 10U);
    constexpr std::size_t mostDescriptors = 28;  // that one message of either protocol has
    alignas(cmsghdr) std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> descriptors{};
    while (true) {
        iovec content{.iov_base = bytes.data(), .iov_len = bytes.size()};
        msghdr message{};
        message.msg_iov = &content;
        message.msg_iovlen = 1;
        message.msg_control = descriptors.data();
        message.msg_controllen = descriptors.size();
        const ssize_t count = ::recvmsg(from, &message, MSG_CMSG_CLOEXEC);
        if (count <= 0) break;
        content.iov_len = static_cast<std::size_t>(count);
        const std::string_view received(bytes.data(), content.iov_len);
        for (auto at = received.find(name_); at != std::string_view::npos; at = received.find(name_, at)) {
            bytes[at] = '?';
        }
        const bool isSent = ::sendmsg(to, &message, MSG_NOSIGNAL) == count;
        closePassed(message);
        if (!isSent) break;
    }
    for (const int end : {from, to}) ::shutdown(end, SHUT_RDWR);
}

}  // namespace ovrin
