// Takes the pictures of every window, in both appearances, that the documents show: ovrin_pictures FOLDER
//
// They come from the built program at work on private desktops, of X11, sway and KWin, with the practice service in
// place of a model.
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

#include "base/error.h"
#include "desktop/assistant.h"
#include "desktop/picture.h"
#include "desktop/practice_updates.h"
#include "desktop/private_desktop.h"
#include "desktop/sample_program.h"
#include "desktop/screen_reader.h"
#include "desktop/test_user.h"
#include "desktop/wait.h"
#include "desktop/wayland_desktop.h"
#include "desktop/wayland_user.h"
#include "practice/page_text.h"
#include "practice/practice_service.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

constexpr const char* program = "ovrin";
constexpr int shadow = 32;  // pixels around a window

class PictureSet {
public:
    enum class ModelService { inEnvironment, unknown };

    PictureSet(fs::path folder, std::string appearance, ModelService modelService)
        : folder_(std::move(folder)), appearance_(std::move(appearance)), modelService_(modelService) {}

    void take() {
        takeSelectionAndToast();
        takePanel();
        takeConversation();
        takePalette();
        takeMenu();
        takeCard();
        takeInputTranslation();
        takeHistory();
        takeUpdates();
        takeChat();
    }

    // As somebody sees them who has not set anything yet.
    void takeSettings() {
        for (const char* const page : {"general", "service", "shortcuts", "advanced", "about"}) {
            assistant_.run({"do", "settings", page});
            const DesktopWindow window = user_.waitForWindow({.program = program, .width = 820, .height = 660});
            user_.waitUntilActive(window.id);
            user_.moveTo({.x = 4, .y = 4});
            saveWindow(std::string("settings-") + page, window);
        }
    }

private:
    void save(const std::string& name, const PixelArea& area) const {
        user_.savePicture(area, folder_ / (name + "-" + appearance_ + ".png"));
        std::cout << name << '-' << appearance_ << ".png\n" << std::flush;
    }
    // The margin of a floating window that holds its shadow.
    int ownShadow() const { return appearance_ == "dark" ? 26 : 0; }
    void saveStill(const std::string& name, const PixelArea& area) const {
        user_.waitForStillPicture(area);
        save(name, area);
    }
    void saveWindow(const std::string& name, const DesktopWindow& window) const {
        saveStill(name, user_.view().window(window.id).value_or(window).area.grownBy(shadow));
    }
    void choose(const std::string& name) const { user_.click(reader_.waitForName(program, name).area.center()); }
    void waitForAnswer(std::size_t number) const {
        waitFor("the answer", [&] {
            const auto exchanges = service_.exchanges();
            return exchanges.size() > number && exchanges[number].state == PracticeService::Exchange::State::complete;
        });
    }

    PixelArea sentences() {
        const auto lines = page_.lines();
        const PixelArea first = lines.at(3).area;
        const PixelArea last = lines.at(5).area;
        return PixelArea{.x = first.x, .y = first.y, .width = first.width, .height = last.y + last.height - first.y}
            .grownBy(10);
    }

    void takeSelectionAndToast() {
        const PixelArea selection = sentences();
        user_.pressKeys("Super_L+Shift_L+t");
        assistant_.waitForOverlays();
        user_.beginDrag(selection.topLeft(), selection.bottomRight());
        if (appearance_ == "light") {  // it has one appearance
            const PixelArea page = page_.window().area;
            user_.waitForStillPicture(page);
            user_.savePicture(page, folder_ / "overlay.png");
        }
        user_.release();
        const PixelArea toast = assistant_.waitForToast().area;
        user_.waitForPicture("the words of the toast", toast,
                             [](const QImage& picture) { return contrast(picture) > 100; });
        save("toast", toast.grownBy(shadow));
    }

    void takePanel() {
        const DesktopWindow panel = assistant_.waitForPanel();
        waitForAnswer(0);
        user_.moveTo({.x = 4, .y = 4});
        saveWindow("panel", panel);
        choose("原图翻译");
        user_.moveTo({.x = 4, .y = 4});
        saveWindow("translated-lines", panel);
        choose("返回文本");
    }

    void takeConversation() {
        const DesktopWindow panel = assistant_.waitForPanel();
        choose("提炼重点");
        waitForAnswer(1);
        user_.moveTo({.x = 4, .y = 4});
        saveWindow("conversation", panel);
        choose("关闭");
        user_.waitUntilGone(panel.id);
    }

    void takePalette() {
        assistant_.run({"do", "command-palette"});
        const DesktopWindow palette = assistant_.waitForPalette();
        user_.waitUntilActive(palette.id);
        saveWindow("palette", palette);
        user_.pressKeys("Escape");
        user_.waitUntilGone(palette.id);
    }

    void takeMenu() {
        user_.click(assistant_.waitForTrayIcon().area.center(), TestUser::Button::right);
        const DesktopWindow menu = assistant_.waitForMenu();
        saveWindow("menu", menu);
        user_.pressKeys("Escape");
        user_.waitUntilGone(menu.id);
    }

    void takeCard() {
        SampleProgram editor(desktop_, user_, samplePath, SampleProgram::Kind::editor);
        user_.waitUntilActive(editor.window().id);
        editor.selectText("A ticket to the small island costs three coins.");
        user_.moveTo({.x = 900, .y = 500});
        assistant_.run({"do", "silent-selection"});
        const DesktopWindow card =
            user_.waitForWindow({.program = program, .width = 350 + 2 * ownShadow(), .height = 225 + 2 * ownShadow()});
        waitForAnswer(2);
        saveWindow("card", card);
        choose("关闭");
        user_.waitUntilGone(card.id);
    }

    void takeInputTranslation() {
        assistant_.run({"do", "input-translate"});
        const DesktopWindow window = user_.waitForWindow({.program = program, .width = 760, .height = 490});
        user_.waitUntilActive(window.id);
        user_.type("A ticket to the small island costs three coins.");
        user_.pressKeys("Control_L+Return");
        waitForAnswer(3);
        reader_.waitForName(program, "开始翻译");
        user_.moveTo({.x = 4, .y = 4});
        saveWindow("input-translation", window);
        choose("关闭");
        user_.waitUntilGone(window.id);
    }

    void takeHistory() {
        assistant_.run({"do", "history"});
        const DesktopWindow window = user_.waitForWindow({.program = program, .width = 800, .height = 550});
        user_.waitUntilActive(window.id);
        user_.moveTo({.x = 4, .y = 4});
        saveWindow("history", window);
        user_.pressKeys("Control_L+w");
        user_.waitUntilGone(window.id);
    }

    void takeChat() {
        assistant_.run({"do", "direct-ai"});
        const DesktopWindow bar = user_.waitForWindow({.program = program, .width = 540, .height = 150});
        user_.waitUntilActive(bar.id);
        saveWindow("chat-bar", bar);
        user_.type("Is there a model behind this service?\n");
        const DesktopWindow chat = user_.waitForWindow({.program = program, .width = 580, .height = 560});
        waitForAnswer(4);
        for (const char* const line : {"What may an answer look like?", "", "1. **Bold**, *italic*"}) {
            user_.type(line);
            user_.pressKeys("Shift_L+Return");
        }
        user_.type("2. `code`\n");
        waitForAnswer(5);
        saveWindow("chat", chat);
    }

    void takeUpdates() {
        assistant_.run({"do", "check-for-updates"});
        const DesktopWindow window = user_.waitForWindow({.title = "软件更新 — Ovrin"});
        reader_.waitForName(program, "跳过此版本");
        user_.moveTo({.x = 4, .y = 4});
        saveWindow("updates", window);
        choose("稍后");
        user_.waitUntilGone(window.id);
    }

    static constexpr const char* releaseNotes = R"(## 新功能

- **历史记录**可以搜索与筛选，结果随输入更新
- 小字号的文字识别得更快，长图占用的内存减少三分之一
- 新命令 `ovrin do settings`

## 修复

1. 没有合成器时，面板的圆角不再有黑边
2. 多显示器之间拖动时，工具栏留在原处
)";

    static constexpr const char* samplePath = OVRIN_BINARY_DIR "/ovrin_sample_program";

    const fs::path folder_;
    const std::string appearance_;
    const ModelService modelService_;
    PracticeService service_;
    PracticeUpdates updates_{"1.0-12", releaseNotes, std::size_t{38} << 20U};
    PrivateDesktop desktop_{{.accessibility = PrivateDesktop::Accessibility::on}};
    TestUser user_{desktop_.display()};
    ScreenReader reader_{desktop_.bus()};
    SampleProgram page_{desktop_, user_, samplePath, SampleProgram::Kind::page};
    Assistant assistant_{desktop_,
                         user_,
                         {.program = OVRIN_BINARY_DIR "/ovrin_updating",
                          .serviceURL = modelService_ == ModelService::inEnvironment ? service_.baseURL() : "",
                          .preferences = {{"ovrin.appearanceMode", appearance_}},
                          .environment = updates_.environment()}};
};

// The whole output of a Wayland compositor: the main job a moment after the selection, and its result.
class WaylandPictureSet {
public:
    WaylandPictureSet(fs::path folder, WaylandDesktop::Compositor compositor, std::string appearance)
        : folder_(std::move(folder)),
          name_(compositor == WaylandDesktop::Compositor::sway ? "sway" : "kwin"),
          appearance_(std::move(appearance)),
          desktop_({.compositor = compositor, .width = width, .height = height, .program = ovrinPath}) {}

    void take() {
        const double bright = brightness(desktop_.picture());
        assistant_.perform("capture-translate");
        constexpr double dimmest = 0.75;
        waitFor("the overlay", [&] { return brightness(desktop_.picture()) < dimmest * bright; });
        const auto lines = page_.lines();
        const PixelArea last = lines.at(5).area;
        user_.moveTo(lines.at(3).area.grownBy(margin).topLeft());
        user_.press();
        const PixelSpot end{.x = lines.at(3).area.bottomRight().x + margin, .y = last.bottomRight().y + margin};
        user_.moveTo({.x = end.x - 1, .y = end.y - 1});
        user_.moveTo(end);
        if (appearance_ == "light") save(name_ + "-overlay");  // it has one appearance
        user_.release();
        reader_.waitForWords(program, *pageTranslation(lines.at(5).text, "zh-Hans"));
        user_.moveTo({.x = 4, .y = 4});
        save(name_ + "-" + appearance_);
    }

private:
    void save(const std::string& name) const {
        desktop_.settledPicture().save(QString::fromStdString((folder_ / (name + ".png")).string()));
        std::cout << name << ".png\n" << std::flush;
    }

    static constexpr int width = 1280;
    static constexpr int height = 860;
    static constexpr int margin = 10;
    static constexpr const char* ovrinPath = OVRIN_BINARY_DIR "/ovrin";

    const fs::path folder_;
    const std::string name_;
    const std::string appearance_;
    PracticeService service_;
    WaylandDesktop desktop_;
    WaylandUser user_{desktop_.display()};
    ScreenReader reader_{desktop_.bus()};
    WaylandSampleProgram page_{desktop_, OVRIN_BINARY_DIR "/ovrin_sample_program", SampleDialogue::Kind::page};
    WaylandAssistant assistant_{
        desktop_,
        {.program = ovrinPath, .serviceURL = service_.baseURL(), .environment = {"OVRIN_APPEARANCE=" + appearance_}}};
};

}  // namespace
}  // namespace ovrin

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: ovrin_pictures FOLDER\n";
        return 2;
    }
    try {
        std::filesystem::create_directories(arguments[1]);
        for (const char* const appearance : {"light", "dark"}) {
            using Pictures = ovrin::PictureSet;
            Pictures(arguments[1], appearance, Pictures::ModelService::inEnvironment).take();
            Pictures(arguments[1], appearance, Pictures::ModelService::unknown).takeSettings();
            using Compositor = ovrin::WaylandDesktop::Compositor;
            for (const Compositor compositor : {Compositor::sway, Compositor::kwin}) {
                ovrin::WaylandPictureSet(arguments[1], compositor, appearance).take();
            }
        }
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "ovrin_pictures: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
