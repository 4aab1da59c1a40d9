#include "fakes/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {
namespace {

constexpr std::chrono::seconds gracePeriod{5};

struct Channel {
    int reading = -1;
    int writing = -1;
};

Channel makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw Error("no pipe");
    return {.reading = ends[0], .writing = ends[1]};
}

// Unlike a pipe it raises no signal when its reader has gone.
Channel makeSocketPair() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throw Error("no socket");
    return {.reading = ends[0], .writing = ends[1]};
}

void closeIfOpen(int& descriptor) {
    if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
}

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const auto& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

bool isReadable(int descriptor, std::chrono::milliseconds patience) {
    pollfd waiting{.fd = descriptor, .events = POLLIN, .revents = 0};
    int result = 0;
    do {
        result = ::poll(&waiting, 1, static_cast<int>(patience.count()));
    } while (result < 0 && errno == EINTR);
    return result > 0;
}

// Everything that the new process needs between fork and exec, where it may neither allocate nor lock.
struct Launch {
    char* const* arguments;
    char* const* environment;
    int input;
    int output;
    int log;
    int failure;  // the write end of a pipe that exec closes
    pid_t parent;
};

[[noreturn]] void become(const Launch& launch) {
    // A polite signal: an X server then takes its socket and lock file along.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != launch.parent) ::_exit(EXIT_FAILURE);
    ::setpgid(0, 0);
    ::signal(SIGPIPE, SIG_DFL);
    ::dup2(launch.input, STDIN_FILENO);
    ::dup2(launch.output, STDOUT_FILENO);
    ::dup2(launch.log, STDERR_FILENO);
    ::execvpe(launch.arguments[0], launch.arguments, launch.environment);
    const int reason = errno;
    (void)!::write(launch.failure, &reason, sizeof reason);
    ::_exit(EXIT_FAILURE);
}

}  // namespace

bool ChildProcess::isInstalled(const std::string& program) {
    const char* const path = std::getenv("PATH");
    const std::string directories = path == nullptr ? "" : path;
    for (std::size_t begin = 0; begin <= directories.size();) {
        const auto end = std::min(directories.find(':', begin), directories.size());
        if (::access((directories.substr(begin, end - begin) + "/" + program).c_str(), X_OK) == 0) return true;
        begin = end + 1;
    }
    return false;
}

ChildProcess::ChildProcess(const Setup& setup) : name_(setup.arguments.front()) {
    const auto arguments = pointersTo(setup.arguments);
    const auto environment = pointersTo(setup.environment);
    const Channel input = makeSocketPair();
    const Channel output = makePipe();
    const Channel failure = makePipe();
    const int log = ::open(setup.log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (log < 0) throw Error("cannot write " + setup.log.string());
    const Launch launch{.arguments = arguments.data(),
                        .environment = environment.data(),
                        .input = input.reading,
                        .output = setup.output == Output::log ? log : output.writing,
                        .log = log,
                        .failure = failure.writing,
                        .parent = ::getpid()};
    id_ = ::fork();
    if (id_ == 0) become(launch);
    for (const int theirs : {input.reading, output.writing, failure.writing, log}) ::close(theirs);
    input_ = input.writing;
    output_ = output.reading;
    int reason = id_ < 0 ? errno : 0;
    if (id_ >= 0) (void)!::read(failure.reading, &reason, sizeof reason);
    ::close(failure.reading);
    if (reason != 0) {
        if (id_ > 0) ::waitpid(std::exchange(id_, -1), nullptr, 0);
        closeDescriptors();
        throw Error("cannot start " + name_ + ": " + std::strerror(reason));
    }
    ::setpgid(id_, id_);  // whichever of the two comes first
    process_ = static_cast<int>(::syscall(SYS_pidfd_open, id_, 0));
    if (!setup.input.empty()) write(setup.input);
    if (setup.afterInput == Input::ends) closeIfOpen(input_);
}

bool ChildProcess::isRunning() const {
    return id_ > 0 && !waitForExit(std::chrono::milliseconds(0));
}

bool ChildProcess::waitForExit(std::chrono::milliseconds patience) const {
    return isReadable(process_, patience);
}

std::string ChildProcess::readLine(std::chrono::milliseconds patience) {
    std::size_t end = 0;
    while ((end = received_.find('\n')) == std::string::npos) {
        if (!receive(patience)) return std::exchange(received_, {});
    }
    std::string line = received_.substr(0, end);
    received_.erase(0, end + 1);
    return line;
}

std::string ChildProcess::read(std::size_t size) {
    while (received_.size() < size && receive(defaultPatience)) {
    }
    std::string bytes = received_.substr(0, size);
    received_.erase(0, size);
    return bytes;
}

bool ChildProcess::receive(std::chrono::milliseconds patience) {
    std::array<char, 4096> buffer{};
    if (output_ < 0) return false;
    if (!isReadable(output_, patience)) throw Error(name_ + " says nothing");
    const ssize_t count = ::read(output_, buffer.data(), buffer.size());
    if (count <= 0) return false;
    received_.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

void ChildProcess::closeOutput() {
    closeIfOpen(output_);
}

void ChildProcess::write(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t count = ::send(input_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) throw Error(name_ + " no longer reads its input");
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void ChildProcess::signal(int number) const {
    if (id_ > 0) ::kill(id_, number);
}

int ChildProcess::waitForEnd(std::chrono::milliseconds patience) {
    if (!waitForExit(patience)) throw Error(name_ + " does not end");
    const int status = killGroupAndReap();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void ChildProcess::terminate() {
    if (id_ <= 0) return;
    ::kill(-id_, SIGTERM);
    waitForExit(gracePeriod);
    stop();
}

void ChildProcess::stop() {
    if (id_ > 0) killGroupAndReap();
}

// In this order: the number of the group is nobody else's as long as its leader has not been reaped.
int ChildProcess::killGroupAndReap() {
    ::kill(-id_, SIGKILL);
    int status = 0;
    ::waitpid(std::exchange(id_, -1), &status, 0);
    closeDescriptors();
    return status;
}

void ChildProcess::closeDescriptors() {
    for (int* const descriptor : {&process_, &input_, &output_}) closeIfOpen(*descriptor);
}

}  // namespace ovrin
