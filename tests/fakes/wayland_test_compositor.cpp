#include "fakes/wayland_test_compositor.h"

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <fstream>

#include <pwd.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {
namespace {

std::string valueOf(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string nameOf(std::size_t index) {
    return "HEADLESS-" + std::to_string(index + 1);
}

// The line at the end is written to the compositor's standard output once the socket is there.
std::string configurationIn(const std::filesystem::path& folder, const std::vector<HeadlessOutput>& outputs) {
    const std::filesystem::path path = folder / "config";
    std::ofstream file(path);
    file << "xwayland disable\nswaybg_command -\ndefault_border none\ndefault_floating_border none\n";
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const HeadlessOutput& output = outputs[i];
        file << "output " << nameOf(i) << " mode " << output.width << 'x' << output.height << " position " << output.x
             << ' ' << output.y << " scale " << output.scale << " transform " << output.transform << '\n';
    }
    file << "exec echo $WAYLAND_DISPLAY $SWAYSOCK\n";
    return path.string();
}

// The compositor refuses to run as root, who therefore runs it as the user that owns nothing.
std::vector<std::string> asOrdinaryUser(const std::filesystem::path& folder, const std::vector<std::string>& command) {
    if (::geteuid() != 0) return command;
    const passwd* const nobody = ::getpwnam("nobody");
    if (nobody == nullptr) throw Error("there is no user called nobody");
    if (::chown(folder.c_str(), nobody->pw_uid, nobody->pw_gid) != 0) throw Error("cannot give the folder away");
    std::vector<std::string> arguments{"setpriv", "--reuid=" + std::to_string(nobody->pw_uid),
                                       "--regid=" + std::to_string(nobody->pw_gid), "--clear-groups",
                                       "--pdeathsig=TERM"};
    arguments.insert(arguments.end(), command.begin(), command.end());
    return arguments;
}

ChildProcess::Setup setupIn(const std::filesystem::path& folder, const std::vector<HeadlessOutput>& outputs) {
    return {.arguments = asOrdinaryUser(folder, {"sway", "--config", configurationIn(folder, outputs)}),
            .environment = {"PATH=" + valueOf("PATH"), "HOME=" + folder.string(), "XDG_RUNTIME_DIR=" + folder.string(),
                            "WLR_BACKENDS=headless", "WLR_RENDERER=pixman", "WLR_LIBINPUT_NO_DEVICES=1",
                            "WLR_HEADLESS_OUTPUTS=" + std::to_string(outputs.size())}};
}

}  // namespace

bool WaylandTestCompositor::mayBeSkipped() {
    return !ChildProcess::isInstalled("sway") && !isEveryTestDemanded();
}

bool WaylandTestCompositor::isEveryTestDemanded() {
    return valueOf("CI") == "true";
}

WaylandTestCompositor::WaylandTestCompositor(const std::vector<HeadlessOutput>& outputs)
    : setup_(setupIn(folder_.path(), outputs)) {
    restart();
}

void WaylandTestCompositor::restart() {
    compositor_ = nullptr;
    compositor_ = std::make_unique<ChildProcess>(setup_);
    const std::string names = compositor_->readLine();
    if (names.empty()) throw Error("the compositor ended at once");
    const std::size_t space = names.find(' ');
    socket_ = folder_.path() / names.substr(0, space);
    controlSocket_ = names.substr(space + 1);
}

void WaylandTestCompositor::freeze() const {
    compositor_->signal(SIGSTOP);
}

void WaylandTestCompositor::thaw() const {
    compositor_->signal(SIGCONT);
}

}  // namespace ovrin
