// KDE's compositor without a screen and without a session bus, for what only it offers. It lets every program press
// keys and see windows, as if each had a desktop entry that asks for that.
#pragma once

#include <filesystem>
#include <string>

#include "fakes/child_process.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

class KWinTestCompositor {
public:
    // As WaylandTestCompositor::mayBeSkipped().
    static bool mayBeSkipped();

    // Returns when it takes connections. Throws Error when it cannot be started.
    KWinTestCompositor();

    // As those of WaylandTestCompositor.
    std::string display() const { return (folder_.path() / socketName).string(); }
    const std::filesystem::path& runtimeFolder() const { return folder_.path(); }

private:
    static constexpr const char* socketName = "kwin-test";
    static ChildProcess::Setup setupIn(const std::filesystem::path& folder);

    TemporaryDirectory folder_;
    ChildProcess compositor_;
};

}  // namespace ovrin
