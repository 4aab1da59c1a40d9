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

namespace ovrin {

class SampleProgram {
public:
    enum class Kind : std::uint8_t { page, editor };

    // program: the path of ovrin_sample_program. Returns when its window has the keyboard and shows what it has.
    SampleProgram(const PrivateDesktop& desktop, const TestUser& user, const std::string& program, Kind kind);

    // As it is now.
    DesktopWindow window() const;

    struct Line {
        std::string text;
        PixelArea area;  // on the screen
    };
    std::vector<Line> lines();

    // Of the editor.
    void selectText(const std::string& text);
    std::string text();

    // What it puts on the clipboard belongs to it.
    void copyText(const std::string& text);
    void copyPicture(std::size_t line);
    void clearClipboard();

private:
    json::Value ask(const json::Value& command);

    const TestUser& user_;
    std::unique_ptr<ChildProcess> process_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
};

}  // namespace ovrin
