// KDE's compositor without a screen, for what only it offers.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "fakes/child_process.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

class KWinTestCompositor {
public:
    // As WaylandTestCompositor::mayBeSkipped().
    static bool mayBeSkipped();

    // Without a session bus, and without pictures of its output. It lets every program press keys and see windows, as
    // if each had a desktop entry that asks for that.
    KWinTestCompositor() : KWinTestCompositor(Session()) {}
    // On a session bus, drawing, and as careful as in a real session: it looks into the desktop entries in
    // dataFolder/applications, which have to be there before.
    struct Session {
        std::string busAddress;
        std::filesystem::path dataFolder;
        int width = 1024;  // points of each output
        int height = 768;
        int outputs = 1;
        double scale = 1;  // pixels per point
    };
    // Returns when it takes connections. Throws Error when it cannot be started.
    explicit KWinTestCompositor(const Session& session);

    // As those of WaylandTestCompositor.
    std::string display() const { return (folder_.path() / socketName).string(); }
    const std::filesystem::path& runtimeFolder() const { return folder_.path(); }
    void stop() { compositor_->stop(); }
    void restart();

private:
    static constexpr const char* socketName = "kwin-test";
    static ChildProcess::Setup setupIn(const std::filesystem::path& folder, const Session& session);

    TemporaryDirectory folder_;
    const ChildProcess::Setup setup_;
    std::unique_ptr<ChildProcess> compositor_;
};

}  // namespace ovrin
