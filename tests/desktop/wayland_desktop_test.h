// A test with the whole program on a Wayland desktop of its own whose windows can be read: a user, the assistant, the
// practice service that it asks, and another program. When a test fails, a picture of the first output is kept and what
// was written is printed.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/screen_reader.h"
#include "desktop/wayland_desktop.h"
#include "desktop/wayland_user.h"
#include "practice/practice_service.h"

namespace ovrin {

class WaylandDesktopTest : public testing::Test {
protected:
    using Kind = SampleDialogue::Kind;
    using Selection = WaylandDesktop::Selection;
    using Compositor = WaylandDesktop::Compositor;

    // Whether the compositor is not installed and nobody demands the test.
    static bool mayBeSkipped(Compositor compositor);
    void begin(const WaylandDesktop::Setup& setup);
    // environment: of the assistant, in place of the desktop's, or beside it.
    void startAssistant(const std::vector<std::string>& environment = {});
    void TearDown() override;

    void open(Kind kind);
    void waitForOverlay(double brightnessBefore, std::size_t output = 0) const;
    void waitForSelected(const std::string& text, Selection selection = Selection::clipboard) const;
    void waitForWords(const std::string& words) const { reader->waitForWords("ovrin", words); }
    // The exchange of this number, counted from 0, once it has ended.
    PracticeService::Exchange waitForExchange(std::size_t number) const;

    PracticeService service{std::chrono::milliseconds(1)};
    std::unique_ptr<WaylandDesktop> desktop;
    std::unique_ptr<WaylandUser> user;
    std::unique_ptr<ScreenReader> reader;
    std::unique_ptr<WaylandAssistant> assistant;
    std::unique_ptr<WaylandSampleProgram> program;
};

}  // namespace ovrin
