#include "fakes/private_bus.h"

#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {
namespace {

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const auto& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

// The standard configuration would start whatever services the machine has installed.
std::string configurationIn(const std::filesystem::path& directory) {
    const std::filesystem::path path = directory / "bus.conf";
    std::ofstream(path) << "<busconfig><type>session</type><listen>unix:dir=" << directory.string()
                        << "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
    return path.string();
}

}  // namespace

ChildProcess::ChildProcess(const Setup& setup) {
    int input[2];
    int output[2];
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) throw Error("no pipe");
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const auto arguments = pointersTo(setup.arguments);
    const auto environment = pointersTo(setup.environment);
    const int failure =
        ::posix_spawnp(&id_, arguments.front(), &actions, nullptr, arguments.data(), environment.data());
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    ::close(output[1]);
    output_ = output[0];
    if (failure == 0) (void)!::write(input[1], setup.input.data(), setup.input.size());
    ::close(input[1]);
    if (failure != 0) throw Error("cannot start " + setup.arguments.front());
}

std::string ChildProcess::readLine() const {
    std::string line;
    char character = 0;
    while (::read(output_, &character, 1) == 1 && character != '\n') line += character;
    return line;
}

void ChildProcess::stop() {
    if (id_ <= 0) return;
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
    ::close(output_);
    id_ = -1;
}

PrivateBus::PrivateBus()
    : daemon_({.arguments = {"dbus-daemon", "--nofork", "--print-address",
                             "--config-file=" + configurationIn(directory_.path())},
               .environment = {"HOME=" + directory_.path().string()}}),
      address_(daemon_.readLine()) {}

}  // namespace ovrin
