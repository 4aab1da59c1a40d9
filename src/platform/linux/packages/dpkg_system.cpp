#include "platform/linux/packages/dpkg_system.h"

#include <filesystem>
#include <memory>
#include <string_view>

#include <glib.h>

#include "base/text.h"
#include "platform/linux/desktop/own_executable.h"
#include "platform/linux/packages/program_output.h"

namespace ovrin {

namespace {

std::string osInformation(const char* key) {
    const std::unique_ptr<char, decltype(&g_free)> value(g_get_os_info(key), g_free);
    return value ? value.get() : "";
}

// dpkg answers with lines like "ovrin: /usr/bin/ovrin", and with "ovrin:amd64: ..." where packages of several
// architectures may be installed.
bool isOwned(const std::filesystem::path& file) {
    const auto answer = programOutput({"dpkg-query", "--search", file.string()});
    if (!answer) return false;
    const std::string ending = ": " + file.string();
    std::string_view rest = *answer;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        const bool isOurs = line.starts_with("ovrin:") && line.ends_with(ending);
        if (isOurs) return true;
    }
    return false;
}

}  // namespace

PackageSystem::Description DpkgSystem::describe() const {
    const auto program = ownExecutable();
    const std::string architecture = programOutput({"dpkg", "--print-architecture"}).value_or("");
    return {.distribution = osInformation(G_OS_INFO_KEY_ID),
            .release = osInformation(G_OS_INFO_KEY_VERSION_ID),
            .architecture = std::string(text::trimmed(architecture)),
            .ownsProgram = !program.empty() && isOwned(program)};
}

}  // namespace ovrin
