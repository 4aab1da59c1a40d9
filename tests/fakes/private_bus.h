// A session bus of the test's own on which nothing is started by itself, and programs that live as long as the test.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

#include "fakes/temporary_directory.h"

namespace ovrin {

// A running program; killed at the end of its scope.
class ChildProcess {
public:
    struct Setup {
        std::vector<std::string> arguments;    // the program first, looked up in PATH
        std::vector<std::string> environment;  // "NAME=value": the whole of it
        std::string input = {};                // what it reads from standard input, to the end
    };

    explicit ChildProcess(const Setup& setup);
    ~ChildProcess() { stop(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // The next line of its standard output; empty at the end.
    std::string readLine() const;
    void stop();

private:
    pid_t id_ = -1;
    int output_ = -1;
};

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
