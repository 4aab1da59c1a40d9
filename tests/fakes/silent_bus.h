// A session bus that takes connections and never says a word.
#pragma once

#include <cstring>
#include <filesystem>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "base/error.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

class SilentBus {
public:
    SilentBus() {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
        if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(listener_, 8) != 0) {
            throw Error("cannot listen at " + path_.string());
        }
    }
    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;
    ~SilentBus() {
        ::close(client_);
        ::close(listener_);
    }

    std::string address() const { return "unix:path=" + path_.string(); }

    // Returns when somebody has connected and said something.
    void waitForClient() {
        client_ = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        char word = 0;
        if (::recv(client_, &word, 1, 0) != 1) throw Error("the client left without a word");
    }

private:
    TemporaryDirectory directory_;
    std::filesystem::path path_ = directory_.path() / "bus";
    int listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int client_ = -1;
};

}  // namespace ovrin
