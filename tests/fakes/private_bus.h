// A session bus of the test's own. It starts nothing by itself but what a test puts into its folder of services.
#pragma once

#include <filesystem>
#include <string>

#include "fakes/child_process.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

class PrivateBus {
public:
    PrivateBus();

    const std::string& address() const { return address_; }
    const std::filesystem::path& servicesFolder() const { return servicesFolder_; }
    void stop() { daemon_.stop(); }

private:
    TemporaryDirectory directory_;
    std::filesystem::path servicesFolder_;
    ChildProcess daemon_;
    std::string address_;
};

}  // namespace ovrin
