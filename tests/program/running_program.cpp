#include "program/running_program.h"

#include <fstream>
#include <iterator>

namespace ovrin {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
    std::ifstream input(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

ChildProcess::Setup processSetup(const TestHome& home, const RunningProgram::Setup& setup, const fs::path& error) {
    ChildProcess::Setup process{.arguments = {setup.program},
                                .environment = home.environment(),
                                .input = setup.input.value_or(""),
                                .afterInput = setup.input ? ChildProcess::Input::ends : ChildProcess::Input::staysOpen,
                                .log = error};
    process.arguments.insert(process.arguments.end(), setup.arguments.begin(), setup.arguments.end());
    process.environment.insert(process.environment.end(), setup.environment.begin(), setup.environment.end());
    return process;
}

}  // namespace

std::vector<std::string> TestHome::environment() const {
    const std::string home = path().string();
    return {"HOME=" + home,
            "XDG_CONFIG_HOME=" + home + "/config",
            "XDG_DATA_HOME=" + home + "/data",
            "XDG_RUNTIME_DIR=" + home + "/run",
            "LANG=en_US.UTF-8",
            "NO_PROXY=*"};
}

std::string TestHome::allBytes() const {
    std::string bytes;
    for (const std::string& file : files()) {
        if (fs::path(file) != keychainFile()) bytes += contentOf(file);
    }
    return bytes;
}

std::vector<std::string> TestHome::files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(path())) {
        if (!entry.is_directory()) names.push_back(entry.path().string());
    }
    return names;
}

RunningProgram::RunningProgram(const TestHome& home, const Setup& setup)
    : process_(processSetup(home, setup, error_)) {}

RunningProgram::Outcome RunningProgram::finish() {
    Outcome outcome{.output = process_.read(std::string::npos)};
    outcome.status = process_.waitForEnd();
    outcome.error = contentOf(error_);
    return outcome;
}

RunningProgram::Outcome runProgram(const TestHome& home, const RunningProgram::Setup& setup) {
    RunningProgram program(home, setup);
    return program.finish();
}

}  // namespace ovrin
