#include "platform/linux/desktop/session_bus.h"

#include <filesystem>
#include <system_error>

namespace ovrin {

SessionBus sessionBus(const Environment& environment) {
    if (environment.value("DBUS_SESSION_BUS_ADDRESS")) return SessionBus::ofProcess;
    const auto directory = environment.value("XDG_RUNTIME_DIR");
    if (!directory) return SessionBus::none;
    std::error_code error;
    const bool isThere = std::filesystem::is_socket(std::filesystem::path(*directory) / "bus", error);
    return isThere ? SessionBus::ofProcess : SessionBus::none;
}

}  // namespace ovrin
