// The other program on a private desktop (tools/sample_program): the page that is read, or an editor with a selection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/json.h"
#include "desktop/pixel_area.h"
#include "desktop/private_desktop.h"
#include "desktop/test_user.h"
#include "fakes/child_process.h"

namespace ovrin {

// What it does when told to, on whatever desktop.
class SampleDialogue {
public:
    enum class Kind : std::uint8_t { page, editor };
    // program: the path of ovrin_sample_program.
    static std::vector<std::string> command(const std::string& program, Kind kind);

    // The process takes commands and is read line by line; null: that comes by start().
    explicit SampleDialogue(std::unique_ptr<ChildProcess> process) : process_(std::move(process)) {}

    struct Line {
        std::string text;
        PixelArea area;
    };
    // Of the page, whose upper left corner is there.
    std::vector<Line> lines(PixelSpot corner);

    // Of the editor.
    void selectText(const std::string& text);
    std::string text();

    // What it puts on the clipboard belongs to it.
    void copyText(const std::string& text);
    void copyPicture(std::size_t line);
    void clearClipboard();

protected:
    void start(std::unique_ptr<ChildProcess> process) { process_ = std::move(process); }
    const ChildProcess& process() const { return *process_; }

private:
    json::Value ask(const json::Value& command);

    std::unique_ptr<ChildProcess> process_;
};

class SampleProgram : public SampleDialogue {
public:
    // Returns when its window has the keyboard and shows what it has.
    SampleProgram(const PrivateDesktop& desktop, const TestUser& user, const std::string& program, Kind kind);

    // As it is now.
    DesktopWindow window() const;
    // Where they are on the screen.
    std::vector<Line> lines() { return SampleDialogue::lines(window().area.topLeft()); }

private:
    const TestUser& user_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
};

}  // namespace ovrin
