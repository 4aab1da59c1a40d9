#include "fakes/private_bus.h"

#include <filesystem>
#include <fstream>

namespace ovrin {
namespace {

// The standard configuration would start whatever services the machine has installed.
std::string configurationIn(const std::filesystem::path& directory, const std::filesystem::path& services) {
    std::filesystem::create_directory(services);
    const std::filesystem::path path = directory / "bus.conf";
    std::ofstream(path) << "<busconfig><type>session</type><listen>unix:dir=" << directory.string()
                        << "</listen><servicedir>" << services.string()
                        << "</servicedir><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
    return path.string();
}

}  // namespace

PrivateBus::PrivateBus()
    : servicesFolder_(directory_.path() / "services"),
      daemon_({.arguments = {"dbus-daemon", "--nofork", "--print-address",
                             "--config-file=" + configurationIn(directory_.path(), servicesFolder_)},
               .environment = {"HOME=" + directory_.path().string()}}),
      address_(daemon_.readLine()) {}

}  // namespace ovrin
