// The speed and the memory of the whole program on a private desktop of 1920x1080, beside their limits:
//
//   build/bench/bench/measure_assistant [windows]
//
// Run it on an idle machine. Every figure is the median of some runs; those on the screen are seen from outside, by
// somebody who looks at it as fast as it can be read.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <malloc.h>

#include "base/error.h"
#include "base/files.h"
#include "base/text.h"
#include "base/uuid.h"
#include "desktop/private_desktop.h"
#include "desktop/sample_program.h"
#include "desktop/test_user.h"
#include "desktop/wait.h"
#include "frame_watch.h"
#include "measuring.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"
#include "platform/linux/x11/x11_connection.h"
#include "practice/practice_service.h"
#include "storage/history_store.h"
#include "wake_ups.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr const char* assistant = OVRIN_BINARY_DIR "/ovrin";
constexpr const char* sampleProgram = OVRIN_BINARY_DIR "/ovrin_sample_program";

std::uint32_t pixelAt(const X11View& view, PixelSpot spot) {
    const X11Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        view.connection(),
        xcb_get_image(view.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, view.root(), static_cast<std::int16_t>(spot.x),
                      static_cast<std::int16_t>(spot.y), 1, 1, ~0U),
        nullptr));
    if (!reply) throw Error("the screen cannot be read");
    return *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
}

// A history as long as they become: 480 records of 2000 characters and 20 of 20 000, half of them with a result, half
// of the texts Chinese. No text holds a letter z.
HistoryRecords longHistory() {
    unsigned state = 1;
    const auto random = [&state](unsigned below) { return (state = state * 1'664'525U + 1'013'904'223U) / 7U % below; };
    const auto text = [&](int length, bool isChinese) {
        std::string result;
        for (int count = 0; count < length; ++count) {
            const unsigned character = 0x4E00 + random(3000);
            if (!isChinese) {
                result += count % 6 == 5 ? ' ' : static_cast<char>('a' + random(25));
            } else {
                for (const unsigned byte :
                     {0xE0U | character >> 12U, 0x80U | (character >> 6U & 0x3FU), 0x80U | (character & 0x3FU)}) {
                    result += static_cast<char>(byte);
                }
            }
        }
        return result;
    };
    constexpr std::array types{historyRecordType::captureOCR, historyRecordType::clipboardTranslation,
                               historyRecordType::directAI};
    HistoryRecords records;
    for (int number = 0; number < 500; ++number) {
        const int length = number % 25 == 0 ? 20'000 : 2'000;
        records.push_back(std::make_shared<const HistoryRecord>(
            HistoryRecord{.id = Uuid::random(),
                          .createdAt = std::chrono::system_clock::now() - std::chrono::minutes(number),
                          .sourceText = text(length, number % 2 == 0),
                          .resultText = number % 4 < 2 ? std::optional(text(length, number % 2 != 0)) : std::nullopt,
                          .recordType = std::string(types.at(static_cast<std::size_t>(number) % types.size()))}));
    }
    return records;
}

class Bench {
public:
    Bench() : user_(desktop_.display()) {
        std::filesystem::create_directories(desktop_.configurationFolder() / "Ovrin");
        std::ofstream(desktop_.configurationFolder() / "Ovrin/preferences.json")
            << R"({"ovrin.didDismissWelcome": true, "ovrin.targetLanguage": "zh-Hans"})";
    }

    // Those of the windows alone.
    void runWindows() {
        start();
        measureWindows();
        quit();
    }

    void run() {
        start();  // the files of the program get into the page cache
        quit();
        report("start to tray icon", medianOf(7, [this] { return startTime(); }), "ms", 200);
        start();
        std::this_thread::sleep_for(6s);  // until it has stopped to wait for a tray
        report("resting memory, before any recognition (PSS)", memory(), "MB", 60);
        report("wake-ups of all threads in 10 idle seconds", wakeUps(10s), "", 0);
        measureWindows();
        SampleProgram page(desktop_, user_, sampleProgram, SampleProgram::Kind::page);
        const PixelArea window = page.window().area;
        report("shortcut to first dimmed frame", medianOf(9, [this] { return dimmingTime(); }), "ms", 60);
        captureTime(window);
        std::puts("waiting for the models to be released");
        std::this_thread::sleep_for(185s);
        report("resting memory, models released (PSS)", memory(), "MB", 60);
        OnnxTextRecognizer recognizer(RecognitionFiles::ofThisProgram());
        const double rest = measureCapture("one line", page.lines().front().area, recognizer);
        report("of that beyond 140 ms and the recognition", rest, "ms", 20);
        measureCapture("the whole page", window, recognizer);
        quit();
    }

private:
    void start() {
        program_ = desktop_.start({.arguments = {assistant},
                                   .environment = {"OVRIN_BASE_URL=" + service_.baseURL(), "OVRIN_API_KEY=practice"}});
        spinUntil("the tray icon", [this] { return trayIcon().has_value(); });
    }

    void quit() {
        program_->terminate();
        program_.reset();
        waitFor("the end of the tray icon", [this] { return !trayIcon(); });
    }

    std::optional<DesktopWindow> trayIcon() const {
        const auto windows = user_.view().embeddedWindows();
        const auto icon = std::ranges::find(windows, "ovrin", &DesktopWindow::className);
        return icon == windows.end() ? std::nullopt : std::optional(*icon);
    }

    double startTime() {
        const auto begin = Clock::now();
        start();
        const double time = millisecondsSince(begin);
        quit();
        return time;
    }

    double memory() const {
        std::ifstream rollup("/proc/" + std::to_string(program_->id()) + "/smaps_rollup");
        for (std::string word; rollup >> word;) {
            double kilobytes = 0;
            if (word == "Pss:" && rollup >> kilobytes) return kilobytes / 1024;
        }
        throw Error("the memory of the program cannot be read");
    }

    double wakeUps(std::chrono::seconds time) const { return static_cast<double>(countWakeUps(program_->id(), time)); }

    // A window, and how the menu of the tray icon opens it.
    struct MenuWindow {
        const char* name;
        const char* title;
        const char* key;  // pressed in the menu so often
        int presses;
        PixelArea inside;  // a large part of it: windows come up in the middle
    };
    static constexpr MenuWindow settingsWindow{.name = "settings",
                                               .title = "Ovrin 设置",
                                               .key = "Up",  // from the end: 退出 Ovrin, 设置…
                                               .presses = 2,
                                               .inside = {.x = 590, .y = 250, .width = 740, .height = 540}};
    static constexpr MenuWindow historyWindow{.name = "history",
                                              .title = "历史记录 — Ovrin",
                                              .key = "Down",
                                              .presses = 10,
                                              .inside = {.x = 600, .y = 300, .width = 720, .height = 450}};

    // With a history as long as they become.
    void measureWindows() {
        quit();
        files::replaceFile(historyFile(), encodedHistory(longHistory()), files::Access::onlyUser);
        const double before = medianOf(3, [this] { return restart(), memory(); });
        for (const MenuWindow& window : {settingsWindow, historyWindow}) {
            const std::string what = std::string(window.name) + ": menu to first complete frame";
            const auto open = [&] {
                const double time = openingTime(window);
                close();
                return time;
            };
            report(what.c_str(), medianOf(5, [&] { return restart(), open(); }), "ms", 120);
            report((what + ", again").c_str(), medianOf(7, open), "ms", 40);
        }
        openingTime(settingsWindow);
        close();
        openingTime(historyWindow);
        measureHistorySearch();
        report("history: deletion to the list without it", medianOf(7, [this] { return deletionTime(); }), "ms", 50);
        std::printf("history: save of another process to the list %.1f ms\n",
                    medianOf(7, [this] { return savingTime(); }));
        close();
        std::this_thread::sleep_for(6s);
        report("memory after both were closed (PSS), beyond before", memory() - before, "MB", 12);
        report("wake-ups of all threads in 10 idle seconds after it", wakeUps(10s), "", 0);
        quit();
        std::filesystem::remove(historyFile());
        start();
    }

    std::filesystem::path historyFile() const { return desktop_.dataFolder() / "Ovrin/history.json"; }

    void restart() {
        if (program_) quit();
        start();
        std::this_thread::sleep_for(6s);
    }

    // Leaves it open, with the keyboard.
    double openingTime(const MenuWindow& window) {
        user_.click(trayIcon()->area.center(), TestUser::Button::right);
        waitFor("the menu", [this] {
            return std::ranges::any_of(user_.find({.program = "ovrin"}), [](const DesktopWindow& shown) {
                return shown.isOverrideRedirect && shown.area.height > 200;
            });
        });
        std::this_thread::sleep_for(300ms);  // until it has the keyboard
        for (int press = 0; press < window.presses; ++press) user_.pressKeys(window.key);
        std::this_thread::sleep_for(200ms);
        const auto time = timeToComplete(user_.view(), window.inside, [this] { user_.pressKeys("Return"); });
        opened_ = user_.waitForWindow({.title = window.title, .program = "ovrin"});
        user_.waitUntilActive(opened_.id);
        return time.count();
    }

    void close() {
        user_.pressKeys("Control_L+w");
        user_.waitUntilGone(opened_.id);
        std::this_thread::sleep_for(300ms);
    }

    // The time until something else is on the screen there.
    double changeTime(const PixelArea& area, const std::function<void()>& act) {
        const QImage before = user_.picture(area);
        const auto begin = Clock::now();
        act();
        spinUntil("the change", [&] { return user_.picture(area) != before; });
        return millisecondsSince(begin);
    }

    // The words that stand in the empty search field, away from the caret, and the text of the first row.
    PixelArea searchHint() const {
        return {.x = opened_.area.x + 560, .y = opened_.area.y + 58, .width = 60, .height = 16};
    }
    PixelArea firstRow() const {
        return {.x = opened_.area.x + 90, .y = opened_.area.y + 136, .width = 500, .height = 40};
    }

    void measureHistorySearch() {
        const auto typeAndClear = [this](const PixelArea& area) {
            const double time = changeTime(area, [this] { user_.pressKeys("z"); });
            std::this_thread::sleep_for(300ms);
            user_.pressKeys("Escape");
            std::this_thread::sleep_for(300ms);
            return time;
        };
        report("history: key in the search to its echo", medianOf(9, [&] { return typeAndClear(searchHint()); }), "ms",
               17);
        report("history: key in the search to the right list", medianOf(9, [&] { return typeAndClear(firstRow()); }),
               "ms", 50);
    }

    double deletionTime() {
        user_.pressKeys("Control_L+f");
        user_.pressKeys("Down");
        std::this_thread::sleep_for(300ms);
        return changeTime(firstRow(), [this] { user_.pressKeys("Delete"); });
    }

    double savingTime() {
        HistoryStore other(historyFile(), text::CaseRules::general, [] { return std::chrono::system_clock::now(); });
        user_.pressKeys("Control_L+f");
        std::this_thread::sleep_for(300ms);
        return changeTime(firstRow(), [&] {
            other.save({.sourceText = "Saved by another process " + Uuid::random().text(),
                        .resultText = {},
                        .recordType = historyRecordType::directAI});
        });
    }

    double dimmingTime() {
        constexpr PixelSpot corner{.x = 3, .y = 3};
        const std::uint32_t bright = pixelAt(user_.view(), corner);
        user_.holdKeys("Super_L+Shift_L");
        const auto begin = Clock::now();
        user_.pressKeys("t");
        spinUntil("the overlay", [&] { return pixelAt(user_.view(), corner) != bright; });
        const double time = millisecondsSince(begin);
        user_.releaseKeys("Super_L+Shift_L");
        std::this_thread::sleep_for(300ms);  // until it has faded in and holds the keyboard
        user_.pressKeys("Escape");
        spinUntil("the end of the overlay", [&] { return pixelAt(user_.view(), corner) == bright; });
        std::this_thread::sleep_for(200ms);
        return time;
    }

    // Beside every capture the recognition alone of the same picture, since the machine's speed changes in the
    // meantime: the shorter it takes, the less of that comes into the difference, which is returned. This comes last:
    // what this process loads for it counts as shared with the assistant.
    double measureCapture(const char* what, const PixelArea& area, OnnxTextRecognizer& recognizer) {
        const QImage seen = user_.picture(area).convertToFormat(QImage::Format_ARGB32);
        const Image picture(seen.width(), seen.height(),
                            {seen.constBits(), seen.constBits() + static_cast<std::ptrdiff_t>(seen.sizeInBytes())});
        captureTime(area);
        recognitionTime(recognizer, picture);
        std::vector<double> ways;
        std::vector<double> recognitions;
        std::vector<double> rests;
        for (int run = 0; run < 9; ++run) {
            ways.push_back(captureTime(area));
            recognitionTime(recognizer,
                            picture);  // finds its memory anew: the command of the capture was forked from this process
            std::this_thread::sleep_for(3s);  // as long after the one before as in the assistant
            recognitions.push_back(recognitionTime(recognizer, picture));
            rests.push_back(ways.back() - 140 - recognitions.back());
        }
        std::printf("%s: mouse-up to text on the clipboard %.1f ms, recognition of it %.1f ms\n", what, median(ways),
                    median(recognitions));
        return median(rests);
    }

    // Silent captures, so that no window covers the page.
    double captureTime(const PixelArea& area) {
        const auto command = desktop_.start({.arguments = {assistant, "do", "silent-capture-ocr"}});
        if (command->waitForEnd() != 0) throw Error("the assistant did not take the command");
        std::this_thread::sleep_for(400ms);
        user_.beginDrag(area.topLeft(), area.bottomRight());
        std::this_thread::sleep_for(100ms);  // a hand rests before it lets go
        const int changes = user_.clipboardChanges();
        const auto begin = Clock::now();
        user_.release();
        // Asking the server more often would take the recognition a part of the machine.
        while (user_.clipboardChanges() == changes) std::this_thread::sleep_for(2ms);
        const double time = millisecondsSince(begin);
        std::this_thread::sleep_for(2500ms);  // until the toast has gone
        return time;
    }

    PracticeService service_{0ms};
    PrivateDesktop desktop_{{}};
    TestUser user_;
    std::unique_ptr<ChildProcess> program_;
    DesktopWindow opened_;  // the last of its windows
};

}  // namespace
}  // namespace ovrin

int main(int argc, char** argv) {
    const bool isOfWindows = argc == 2 && std::string_view(argv[1]) == "windows";
    if (argc > 1 && !isOfWindows) {
        std::fputs("measure_assistant [windows]\n", stderr);
        return 2;
    }
    mallopt(M_ARENA_MAX, 2);  // as in the assistant
    try {
        ovrin::Bench bench;
        isOfWindows ? bench.runWindows() : bench.run();
        return 0;
    } catch (const ovrin::Error& error) {
        std::fprintf(stderr, "measure_assistant: %s\n", error.errorDescription().c_str());
        return 1;
    }
}
