// Updates to practise with: a newer package of the program, signed with a key that is for nothing else, and its feed on
// a server with TLS. They are meant for the build ovrin_updating, which knows the key and the feed's name.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "fakes/loopback_server.h"
#include "fakes/temporary_directory.h"
#include "fakes/test_certificates.h"

namespace ovrin {

class PracticeUpdates {
public:
    // size: about how large the package is, in bytes. Throws Error when it cannot be made: dpkg-deb, python3 and
    // openssl are needed.
    PracticeUpdates(const std::string& packageVersion, std::string_view notes, std::size_t size = 0);
    PracticeUpdates(const PracticeUpdates&) = delete;
    PracticeUpdates& operator=(const PracticeUpdates&) = delete;

    // For the program: the way to the server, and a dpkg that takes it for one of its packages.
    std::vector<std::string> environment() const;

    std::string package() const;  // its bytes

private:
    void write(const std::string& name, std::string_view content) const;
    void makeStandIns() const;
    void publish(const std::string& packageVersion) const;
    void answer(LoopbackServer::Connection& connection) const;

    TemporaryDirectory folder_;
    TestAuthority authority_;
    LoopbackServer server_;
};

}  // namespace ovrin
