#include "program/running_program.h"

#include <array>
#include <csignal>
#include <fstream>
#include <iterator>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw Error("no pipe");
        reading = ends[0];
        writing = ends[1];
    }
    int reading = -1;
    int writing = -1;
};

int fileOf(std::string_view bytes) {
    const int file = ::memfd_create("input", MFD_CLOEXEC);
    if (file < 0 || ::write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        throw Error("no file for the input");
    ::lseek(file, 0, SEEK_SET);
    return file;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

void closeIfOpen(int& descriptor) {
    if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
}

std::string readToEnd(int descriptor) {
    std::string all;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;)
        all.append(buffer.data(), static_cast<std::size_t>(count));
    return all;
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
        if (fs::path(file) == keychainFile()) continue;
        std::ifstream input(file, std::ios::binary);
        bytes.append(std::istreambuf_iterator<char>(input), {});
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

RunningProgram::RunningProgram(const TestHome& home, const Setup& setup) {
    std::vector<std::string> arguments{setup.program};
    arguments.insert(arguments.end(), setup.arguments.begin(), setup.arguments.end());
    std::vector<std::string> environment = home.environment();
    environment.insert(environment.end(), setup.environment.begin(), setup.environment.end());

    const Pipe output;
    const Pipe error;
    int input = -1;
    if (setup.input) {
        input = fileOf(*setup.input);
    } else {
        const Pipe silent;
        input = silent.reading;
        input_ = silent.writing;
    }
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output.writing, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, error.writing, STDERR_FILENO);
    const int failure = ::posix_spawn(&id_, setup.program.c_str(), &actions, nullptr, pointersTo(arguments).data(),
                                      pointersTo(environment).data());
    ::posix_spawn_file_actions_destroy(&actions);
    for (const int theirs : {input, output.writing, error.writing}) ::close(theirs);
    output_ = output.reading;
    error_ = error.reading;
    if (failure != 0) throw Error("cannot start " + setup.program);
}

RunningProgram::~RunningProgram() {
    if (id_ > 0) {
        ::kill(id_, SIGKILL);
        ::waitpid(id_, nullptr, 0);
    }
    for (int* const descriptor : {&input_, &output_, &error_}) closeIfOpen(*descriptor);
}

void RunningProgram::signal(int number) const {
    ::kill(id_, number);
}

std::string RunningProgram::readOutput(std::size_t size) const {
    std::string bytes(size, '\0');
    std::size_t length = 0;
    while (length < size) {
        const ssize_t count = ::read(output_, bytes.data() + length, size - length);
        if (count <= 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

void RunningProgram::closeOutput() {
    closeIfOpen(output_);
}

RunningProgram::Outcome RunningProgram::finish() {
    Outcome outcome;
    std::thread errorReader([&] { outcome.error = readToEnd(error_); });
    if (output_ >= 0) outcome.output = readToEnd(output_);
    errorReader.join();
    int status = 0;
    ::waitpid(std::exchange(id_, -1), &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return outcome;
}

RunningProgram::Outcome runProgram(const TestHome& home, const RunningProgram::Setup& setup) {
    RunningProgram program(home, setup);
    return program.finish();
}

}  // namespace ovrin
