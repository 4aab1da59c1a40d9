#include "platform/linux/packages/program_output.h"

#include <memory>

#include <fcntl.h>
#include <gio/gio.h>

namespace ovrin {

namespace {

struct Release {
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(char* text) const { g_free(text); }
};

}  // namespace

std::optional<std::string> programOutput(const std::vector<std::string>& arguments, int descriptor) {
    std::vector<const char*> words;
    words.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) words.push_back(argument.c_str());
    words.push_back(nullptr);
    const std::unique_ptr<GSubprocessLauncher, Release> launcher(g_subprocess_launcher_new(
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_SILENCE)));
    g_subprocess_launcher_setenv(launcher.get(), "LC_ALL", "C", TRUE);
    if (descriptor >= 0) {
        const int handed = ::fcntl(descriptor, F_DUPFD_CLOEXEC, handedDescriptor + 1);
        if (handed < 0) return std::nullopt;
        g_subprocess_launcher_take_fd(launcher.get(), handed, handedDescriptor);
    }
    const std::unique_ptr<GSubprocess, Release> program(
        g_subprocess_launcher_spawnv(launcher.get(), words.data(), nullptr));
    if (!program) return std::nullopt;
    char* text = nullptr;
    const bool isRead =
        g_subprocess_communicate_utf8(program.get(), nullptr, nullptr, &text, nullptr, nullptr) != FALSE;
    const std::unique_ptr<char, Release> output(text);
    if (!isRead || output == nullptr || g_subprocess_get_successful(program.get()) == FALSE) return std::nullopt;
    return std::string(output.get());
}

}  // namespace ovrin
