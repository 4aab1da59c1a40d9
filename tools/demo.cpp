// Shows the whole program at work on a machine without a display: ovrin_demo
//
// On a private desktop a user presses the shortcut of "capture and translate" and drags over a page in four languages;
// the result panel streams the translation, which comes from the practice service. What was read and translated is
// printed, and pictures of what was on the screen are left in build/demo. Exit status 1 says that something did not
// happen.
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

#include "base/error.h"
#include "desktop/assistant.h"
#include "desktop/picture.h"
#include "desktop/private_desktop.h"
#include "desktop/sample_program.h"
#include "desktop/test_user.h"
#include "desktop/wait.h"
#include "practice/practice_service.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

constexpr int screenWidth = 1920;
constexpr int screenHeight = 1080;
constexpr std::string_view indentation = "    ";

void say(std::string_view text) {
    std::cout << text << std::flush;
}

// So that every line of a text that is printed after an indentation has one.
std::string withIndentedLines(std::string_view text) {
    std::string result;
    for (const char character : text) {
        result += character;
        if (character == '\n') result += indentation;
    }
    return result;
}

class Demonstration {
public:
    void run() {
        fs::remove_all(pictureFolder_);
        say("Ovrin on a private desktop, " + std::to_string(screenWidth) + " x " + std::to_string(screenHeight) +
            ", asking the practice service at " + service_.baseURL() + "\n");
        selectSentences();
        showWhatWasRead();
        showTranslation();
        take("screen", {.width = screenWidth, .height = screenHeight});
        say("\nPictures of the overlay, the toast, the panel and the screen: " + pictureFolder_.string() + "\n");
    }

private:
    PixelArea sentences() {
        const auto lines = page_.lines();
        PixelArea all = lines.front().area;
        for (const auto& line : lines) {
            all.width = std::max(all.width, line.area.x + line.area.width - all.x);
            all.height = line.area.y + line.area.height - all.y;
        }
        return all.grownBy(10);
    }

    void selectSentences() {
        const PixelArea selection = sentences();
        const PixelArea outside{.x = selection.x, .y = selection.y - 40, .width = 200, .height = 20};
        const PixelArea inside{.x = selection.x + 20, .y = selection.y + 4, .width = 60, .height = 4};
        const double paper = brightness(user_.picture(inside));

        say("Super+Shift+T: ");
        user_.pressKeys("Super_L+Shift_L+t");
        const PixelArea display = assistant_.waitForOverlays().front().area;
        user_.waitForPicture("the screen to go dim", outside,
                             [&](const QImage& picture) { return brightness(picture) < paper * 0.75; });
        say("the screen goes dim.\nDragging over the page: ");
        user_.beginDrag(selection.topLeft(), selection.bottomRight());
        user_.waitForPicture("the selection to be clear", inside,
                             [&](const QImage& picture) { return brightness(picture) > paper * 0.95; });
        take("overlay", display);
        say("the sentences are selected.\n");
        user_.release();
    }

    void showWhatWasRead() {
        const PixelArea toast = assistant_.waitForToast().area;
        user_.waitForPicture("the words of the toast", toast,
                             [](const QImage& picture) { return contrast(picture) > 100; });
        take("toast", toast.grownBy(32));
        std::string text;
        waitFor("text on the clipboard", [&] { return !(text = user_.clipboardText()).empty(); });
        say("\nRead from the screen, and now on the clipboard:\n\n" + std::string(indentation) +
            withIndentedLines(text) + "\n");
    }

    void showTranslation() {
        const DesktopWindow panel = assistant_.waitForPanel();
        say("\nStreamed into the panel by the practice service, which has no model behind it:\n\n" +
            std::string(indentation));
        PracticeService::Exchange exchange;
        std::size_t printed = 0;
        waitFor("the translation", [&] {
            const auto exchanges = service_.exchanges();
            if (exchanges.empty()) return false;
            exchange = exchanges.front();
            say(withIndentedLines(std::string_view(exchange.answer).substr(printed)));
            printed = exchange.answer.size();
            return exchange.state != PracticeService::Exchange::State::running;
        });
        say("\n");
        if (exchange.state != PracticeService::Exchange::State::complete)
            throw Error("the assistant broke the translation off");
        waitFor("the translation in the history", [&] {
            const json::Value history = assistant_.history();
            return !history.empty() && json::string(history.front(), "resultText") == exchange.answer;
        });
        const PixelArea area = user_.view().window(panel.id).value_or(panel).area.grownBy(32);
        user_.waitForStillPicture(area);
        take("panel", area);
    }

    void take(const std::string& name, const PixelArea& area) const {
        user_.savePicture(area, pictureFolder_ / (name + ".png"));
    }

    const fs::path pictureFolder_ = OVRIN_DEMO_FOLDER;
    PracticeService service_;
    PrivateDesktop desktop_{{.width = screenWidth, .height = screenHeight}};
    TestUser user_{desktop_.display()};
    SampleProgram page_{desktop_, user_, OVRIN_BINARY_DIR "/ovrin_sample_program", SampleProgram::Kind::page};
    Assistant assistant_{desktop_, user_, {.program = OVRIN_BINARY_DIR "/ovrin", .serviceURL = service_.baseURL()}};
};

}  // namespace
}  // namespace ovrin

int main() {
    try {
        ovrin::Demonstration().run();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "\novrin_demo: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
