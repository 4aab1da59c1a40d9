#include "platform/linux/desktop/detached_program.h"

#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <linux/close_range.h>
#include <spawn.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {

namespace {

std::vector<char*> pointers(std::vector<std::string>& words) {
    std::vector<char*> result;
    result.reserve(words.size() + 1);
    for (std::string& word : words) result.push_back(word.data());
    result.push_back(nullptr);
    return result;
}

std::vector<std::string> entries(const Environment& environment) {
    std::vector<std::string> result;
    for (const auto& [name, value] : environment.variables()) result.emplace_back(name).append("=").append(value);
    return result;
}

// What the system is to do before the program runs.
class Preparations {
public:
    Preparations() {
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID);
        ::posix_spawn_file_actions_init(&actions_);
        for (const int channel : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::posix_spawn_file_actions_addopen(&actions_, channel, "/dev/null", O_RDWR, 0);
        }
    }
    Preparations(const Preparations&) = delete;
    Preparations& operator=(const Preparations&) = delete;
    ~Preparations() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }

    const posix_spawnattr_t* attributes() const { return &attributes_; }
    const posix_spawn_file_actions_t* actions() const { return &actions_; }

private:
    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t actions_{};
};

}  // namespace

pid_t startDetached(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                    const Environment& environment) {
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = entries(environment);
    const Preparations preparations;
    pid_t id = 0;
    const int failure = ::posix_spawn(&id, program.c_str(), preparations.actions(), preparations.attributes(),
                                      pointers(words).data(), pointers(variables).data());
    if (failure != 0) throw Error(program.string() + ": " + std::strerror(failure));
    return id;
}

void becomeProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const Environment& environment) {
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = entries(environment);
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    sigset_t none;
    sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    ::execve(program.c_str(), pointers(words).data(), pointers(variables).data());
}

}  // namespace ovrin
