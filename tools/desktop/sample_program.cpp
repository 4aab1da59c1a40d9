#include "desktop/sample_program.h"

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "desktop/picture.h"
#include "desktop/wait.h"

namespace ovrin {

SampleProgram::SampleProgram(const PrivateDesktop& desktop, const TestUser& user, const std::string& program, Kind kind)
    : SampleDialogue(desktop.start({.arguments = command(program, kind),
                                    .input = ChildProcess::Input::staysOpen,
                                    .output = ChildProcess::Output::lines})),
      user_(user) {
    waitFor("the sample program's window", [this] {
        for (const DesktopWindow& window : user_.view().windows()) {
            const auto owner = user_.view().numbers(window.id, "_NET_WM_PID");
            if (owner.size() == 1 && static_cast<pid_t>(owner.front()) == process().id()) window_ = window.id;
        }
        return window_ != XCB_WINDOW_NONE;
    });
    user_.waitUntilActive(window_);
    if (kind == Kind::page) {
        constexpr int inkOnPaper = 150;
        user_.waitForPicture("the page", lines().back().area,
                             [](const QImage& picture) { return contrast(picture) > inkOnPaper; });
    }
}

DesktopWindow SampleProgram::window() const {
    const auto window = user_.view().window(window_);
    if (!window) throw Error("the sample program has no window");
    return *window;
}

std::vector<std::string> SampleDialogue::command(const std::string& program, Kind kind) {
    return {program, kind == Kind::page ? "page" : "editor"};
}

json::Value SampleDialogue::ask(const json::Value& command) {
    process_->write(json::encoded(command) + "\n");
    const auto answer = json::parse(process_->readLine());
    if (!answer || json::member(*answer, "error") != nullptr) throw Error("the sample program did not understand");
    return *answer;
}

std::vector<SampleDialogue::Line> SampleDialogue::lines(PixelSpot corner) {
    const json::Value answer = ask({{"do", "lines"}});
    std::vector<Line> lines;
    for (const json::Value& line : answer.at("lines")) {
        lines.push_back({.text = line.at("text").get<std::string>(),
                         .area = {.x = corner.x + line.at("x").get<int>(),
                                  .y = corner.y + line.at("y").get<int>(),
                                  .width = line.at("width").get<int>(),
                                  .height = line.at("height").get<int>()}});
    }
    return lines;
}

void SampleDialogue::selectText(const std::string& text) {
    ask({{"do", "selectText"}, {"text", text}});
}

std::string SampleDialogue::text() {
    return ask({{"do", "text"}}).at("text").get<std::string>();
}

void SampleDialogue::copyText(const std::string& text) {
    ask({{"do", "copyText"}, {"text", text}});
}

void SampleDialogue::copyPicture(std::size_t line) {
    ask({{"do", "copyPicture"}, {"line", line}});
}

void SampleDialogue::clearClipboard() {
    ask({{"do", "clearClipboard"}});
}

}  // namespace ovrin
