// A session bus of the test's own on which nothing is started by itself.
#pragma once

#include <string>

#include "fakes/child_process.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

class PrivateBus {
public:
    PrivateBus();

    const std::string& address() const { return address_; }
    void stop() { daemon_.stop(); }

private:
    TemporaryDirectory directory_;
    ChildProcess daemon_;
    std::string address_;
};

}  // namespace ovrin
