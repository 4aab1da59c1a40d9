// The real executable as a child process with a home of its own, and pipes to everything it says.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "fakes/child_process.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

// An empty home without a session bus: the whole environment of the programs that run in it.
class TestHome {
public:
    const std::filesystem::path& path() const { return directory_.path(); }
    std::filesystem::path keychainFile() const { return path() / "data/Ovrin/keychain.json"; }
    std::vector<std::string> environment() const;

    // Every file below it except the keychain's, one after another.
    std::string allBytes() const;

    // Paths below it that are not folders.
    std::vector<std::string> files() const;

private:
    TemporaryDirectory directory_;
};

class RunningProgram {
public:
    struct Setup {
        std::vector<std::string> arguments;      // without the program's name
        std::vector<std::string> environment{};  // on top of the home's: "NAME=value"
        std::optional<std::string> input = "";   // all of standard input; none: it stays open and silent
        std::string program = OVRIN_BINARY_DIR "/ovrin";
    };
    struct Outcome {
        int status = 0;  // the exit status; minus the signal that ended it
        std::string output{};
        std::string error{};
    };

    RunningProgram(const TestHome& home, const Setup& setup);

    pid_t id() const { return process_.id(); }
    void signal(int number) const { process_.signal(number); }

    // The next bytes of standard output, as many as asked for unless it ends before.
    std::string readOutput(std::size_t size) { return process_.read(size); }
    void closeOutput() { process_.closeOutput(); }

    // Waits for its end. The output is what readOutput() left.
    Outcome finish();

private:
    TemporaryDirectory directory_;
    std::filesystem::path error_ = directory_.path() / "error";
    ChildProcess process_;
};

// Runs it to its end.
RunningProgram::Outcome runProgram(const TestHome& home, const RunningProgram::Setup& setup);

}  // namespace ovrin
