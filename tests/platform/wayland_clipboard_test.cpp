#include "platform/linux/wayland/wayland_clipboard.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "fakes/child_process.h"
#include "fakes/two_seat_compositor.h"
#include "fakes/wayland_test_compositor.h"
#include "platform/clipboard_fixture.h"
#include "platform/linux/wayland/wayland_keyboard_layout.h"
#include "platform/linux/wayland/wayland_synthetic_keyboard.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

// A program whose clipboard holds a text without an end.
class EndlessOwner {
public:
    explicit EndlessOwner(const std::string& display)
        : connection_(display.c_str()), device_(connection_, [](SelectionClient::Source) {}) {
        source_ = device_.makeSource();
        zwlr_data_control_source_v1_offer(source_.get(), "text/plain");
        static constexpr zwlr_data_control_source_v1_listener listener = {
            [](void* /*self*/, zwlr_data_control_source_v1* /*source*/, const char* /*type*/, int pipe) {
                const std::string piece(4096, 'a');
                while (::write(pipe, piece.data(), piece.size()) > 0) {
                }
                ::close(pipe);
            },
            [](void* /*self*/, zwlr_data_control_source_v1* /*source*/) {}};
        zwlr_data_control_source_v1_add_listener(source_.get(), &listener, this);
        device_.set(ClipboardSource::clipboard, source_.get());
        connection_.roundTrip();
        thread_ = std::thread([this] { connection_.waitUntil([this] { return isOver_.load(); }, 1min); });
    }
    EndlessOwner(const EndlessOwner&) = delete;
    EndlessOwner& operator=(const EndlessOwner&) = delete;
    ~EndlessOwner() { thread_.join(); }

    void finishAtNextEvent() { isOver_ = true; }

private:
    WaylandConnection connection_;
    WaylandDataDevice device_;
    WaylandDataSource source_;
    std::atomic<bool> isOver_ = false;
    std::thread thread_;
};

class WaylandClipboardTest : public ClipboardTest {
protected:
    void SetUp() override {
        if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "sway is not installed (Debian package sway)";
        std::signal(SIGPIPE, SIG_IGN);
        compositor = std::make_unique<WaylandTestCompositor>();
        ours = connect();
    }

    std::unique_ptr<ClipboardService> connect(WaylandSelection::Limits limits = {}) {
        return connectTo(compositor->display(), limits);
    }
    std::unique_ptr<ClipboardService> connectTo(const std::string& display, WaylandSelection::Limits limits = {}) {
        return std::make_unique<WaylandClipboard>(display.c_str(), decoder, encoder, workers, limits);
    }

    // Another program, such as wl-copy, which goes on serving what it has copied until it ends.
    std::unique_ptr<ChildProcess> program(std::vector<std::string> command, const std::string& input = "") const {
        return std::make_unique<ChildProcess>(
            ChildProcess::Setup{.arguments = std::move(command),
                                .environment = {"PATH=/usr/bin:/bin", "WAYLAND_DISPLAY=" + compositor->display(),
                                                "XDG_RUNTIME_DIR=" + compositor->runtimeFolder().string()},
                                .input = input});
    }

    // Another program has copied when this returns.
    std::unique_ptr<ChildProcess> copy(std::vector<std::string> options, const std::string& text) {
        const std::int64_t before = ours->changeCount();
        std::vector<std::string> command{"wl-copy", "--foreground"};
        command.insert(command.end(), options.begin(), options.end());
        auto owner = program(std::move(command), text);
        loop.complete(changeAfter(before));
        return owner;
    }
    Task<void> changeAfter(std::int64_t before, ClipboardSource source = ClipboardSource::clipboard) {
        while (ours->changeCount(source) == before) co_await sleepFor(1ms);
    }

    // Until the compositor has told that program, too.
    static Task<void> read(ClipboardService& from, std::optional<std::string> expected) {
        std::optional<std::string> text = co_await from.readString();
        while (text != expected) text = co_await from.readString();
    }

    // What another program pastes.
    std::string pasted(const std::string& type, std::vector<std::string> options = {}) {
        loop.complete(ours->readString());  // what was written is done
        options.insert(options.begin(), {"wl-paste", "--no-newline", "--type", type});
        return program(std::move(options))->readLine();
    }

    static Task<ClipboardItem> everything(ClipboardService& of, ClipboardSource source = ClipboardSource::clipboard) {
        ClipboardItem item;
        const std::vector<std::vector<std::string>> types = co_await of.readTypes(source);
        if (types.empty()) co_return item;
        for (const std::string& type : types.front()) {
            std::vector<std::byte> data = co_await of.readForm(0, type, source);
            item.push_back({.type = type, .data = std::move(data)});
        }
        co_return item;
    }

    Task<void> stopSoon() {
        co_await sleepFor(20ms);
        compositor->stop();
    }

    std::unique_ptr<WaylandTestCompositor> compositor;
    std::unique_ptr<ClipboardService> ours;
};

TEST_F(WaylandClipboardTest, TextGoesFromProgramToProgram) {
    EXPECT_EQ(loop.complete(ours->readString()), std::nullopt);
    ours->writeString("识别结果 “ok” 🙂");
    EXPECT_EQ(pasted("text/plain;charset=utf-8"), "识别结果 “ok” 🙂");
    EXPECT_EQ(ours->readCount(), 1);
    const auto owner = copy({}, "译文\n第二行");
    EXPECT_EQ(loop.complete(ours->readString()), "译文\n第二行");
}

TEST_F(WaylandClipboardTest, EveryFormComesBackByteForByteHoweverLarge) {
    const std::string large = largeData();
    const ClipboardItem saved{{"text/html", bytesOf("<b>粗</b>")},
                              {"image/png", bytesOf(large)},
                              {"x-kde-passwordManagerHint", bytesOf("secret")}};
    const auto theirs = connect();
    theirs->writeItems({saved});
    loop.complete(theirs->readString());
    EXPECT_EQ(loop.complete(everything(*ours)), saved);
    ours->writeItems({{saved[0], {.type = "image/bmp", .encodedFrom = "image/png"}, saved[1], saved[2]}});
    loop.complete(ours->readString());
    const ClipboardItem restored{saved[0], {"image/bmp", bytesOf("image/bmp of " + large)}, saved[1], saved[2]};
    EXPECT_EQ(loop.complete(everything(*theirs)), restored);
    EXPECT_EQ(pasted("x-kde-passwordManagerHint"), "secret");
}

TEST_F(WaylandClipboardTest, AChangeIsCountedOnceWhoeverMadeIt) {
    const auto theirs = connect();
    const auto before = ours->changeCount();
    ours->writeString("one");
    loop.complete(ours->readString());
    EXPECT_EQ(ours->changeCount(), before + 1);  // the compositor's word of it is no second change
    theirs->writeString("two");
    loop.complete(changeAfter(before + 1));
    EXPECT_EQ(loop.complete(ours->readString()), "two");
    EXPECT_EQ(ours->changeCount(), before + 2);
    ours->writeItems({});
    ours->writeItems({});
    EXPECT_EQ(loop.complete(ours->readTypes()).size(), 0U);
    EXPECT_EQ(ours->changeCount(), before + 4);
    theirs->writeString("three");
    loop.complete(changeAfter(before + 4));
    theirs->writeItems({});
    loop.complete(changeAfter(before + 5));
    EXPECT_EQ(ours->changeCount(), before + 6);
}

TEST_F(WaylandClipboardTest, AnOwnerThatNeverAnswersIsToldOf) {
    const auto owner = copy({}, "never");
    owner->signal(SIGSTOP);
    const auto impatient = connect({.patience = 20ms});
    EXPECT_EQ(failureOf(*impatient), "复制内容的程序没有响应，请重新复制后再试。");
    EXPECT_TRUE(loop.complete(impatient->readForm(0, "text/plain")).empty());
    impatient->writeString("still works");
    loop.complete(impatient->readString());
    EXPECT_EQ(loop.complete(ours->readString()), "still works");
}

TEST_F(WaylandClipboardTest, AnOwnerThatSendsWithoutEndIsToldOf) {
    EndlessOwner owner(compositor->display());
    for (const WaylandSelection::Limits limits :
         {WaylandSelection::Limits{.largest = 1U << 20U}, WaylandSelection::Limits{.longest = 20ms}}) {
        EXPECT_EQ(failureOf(*connect(limits)), "剪贴板中的内容过大，无法读取。");
    }
    owner.finishAtNextEvent();
    ours->writeString("over");
}

TEST_F(WaylandClipboardTest, WhatIsSelectedIsReadBesideTheClipboard) {
    EXPECT_EQ(loop.complete(ours->readString(ClipboardSource::primary)), std::nullopt);
    const auto owner = copy({}, "copied");
    const auto changes = ours->changeCount();
    const auto selecting = program({"wl-copy", "--foreground", "--primary"}, "选中的文字");
    const auto selected = [](ClipboardService& from) -> Task<std::string> {
        std::optional<std::string> text;
        while (!text) text = co_await from.readString(ClipboardSource::primary);
        co_return *text;
    };
    EXPECT_EQ(loop.complete(selected(*ours)), "选中的文字");
    EXPECT_EQ(loop.complete(ours->readString()), "copied");
    EXPECT_EQ(ours->changeCount(), changes);

    EXPECT_EQ(failureOf(*connect({.largest = 1}), ClipboardSource::primary), "选中的内容过大，无法读取。");
    selecting->signal(SIGSTOP);
    EXPECT_EQ(failureOf(*connect({.patience = 20ms}), ClipboardSource::primary),
              "选中文字的程序没有响应，请稍后再试。");
}

TEST_F(WaylandClipboardTest, WhatIsSelectedIsLentAndGivenBackBesideTheClipboard) {
    auto before = ours->changeCount(ClipboardSource::primary);
    const ClipboardItem selected{{"text/html", bytesOf("<b>选</b>")}, {"text/plain", bytesOf("选")}};
    const auto theirs = connect();
    theirs->writeString("copied");
    theirs->writeItems({selected}, ClipboardSource::primary);
    loop.complete(changeAfter(before++, ClipboardSource::primary));
    EXPECT_EQ(loop.complete(everything(*ours, ClipboardSource::primary)), selected);
    ours->writeString("译文", ClipboardSource::primary);
    EXPECT_EQ(pasted("text/plain", {"--primary"}), "译文");
    EXPECT_EQ(ours->changeCount(ClipboardSource::primary), before + 1);
    EXPECT_EQ(pasted("text/plain"), "copied");
    ours->writeItems({selected}, ClipboardSource::primary);
    EXPECT_EQ(pasted("text/html", {"--primary"}), "<b>选</b>");
    ours->writeItems({}, ClipboardSource::primary);
    EXPECT_EQ(loop.complete(ours->readString(ClipboardSource::primary)), std::nullopt);
    EXPECT_EQ(ours->changeCount(ClipboardSource::primary), before + 3);
}

TEST_F(WaylandClipboardTest, ACompositorThatWasSlowHasWhatWasWrittenMeanwhile) {
    compositor->freeze();
    ours->writeString("written meanwhile");
    EXPECT_EQ(loop.complete(ours->readString()), "written meanwhile");  // once it is no longer waited for
    compositor->thaw();
    EXPECT_EQ(pasted("text/plain"), "written meanwhile");
}

// The protocol's younger name, which no compositor of the distribution offers.
TEST_F(WaylandClipboardTest, EverythingGoesByTheYoungerProtocolOnTheSeatWithTheKeyboard) {
    const TwoSeatCompositor compositorOfOurs;
    ours = connectTo(compositorOfOurs.display());
    const auto theirs = connectTo(compositorOfOurs.display());
    const auto before = ours->changeCount(ClipboardSource::primary);
    const ClipboardItem forms{{"text/html", bytesOf("<b>译</b>")}, {"text/plain", bytesOf("译文")}};
    theirs->writeItems({forms});
    theirs->writeString("选中的文字", ClipboardSource::primary);
    loop.complete(changeAfter(before, ClipboardSource::primary));
    EXPECT_EQ(loop.complete(everything(*ours)), forms);
    EXPECT_EQ(loop.complete(ours->readString(ClipboardSource::primary)), "选中的文字");
    ours->writeString("taken over");
    loop.complete(ours->readString());
    loop.complete(read(*theirs, "taken over"));

    // The keys of such a compositor are the user's alone.
    WaylandConnection connection(compositorOfOurs.display().c_str());
    WaylandSimulateKeyboard keyboard(connection);
    EXPECT_FALSE(keyboard.isTrusted());
    EXPECT_EQ(keyboard.selection(), SimulateKeyboard::Selection::shown);
    theirs->writeItems({}, ClipboardSource::primary);
    loop.complete(theirs->readString());
    EXPECT_EQ(keyboard.selection(), SimulateKeyboard::Selection::absent);

    compositorOfOurs.removeSeats();
    loop.complete(read(*theirs, std::nullopt));
    WaylandConnection later(compositorOfOurs.display().c_str());
    EXPECT_THROW(WaylandKeyboardLayout{later}, Error);
}

TEST_F(WaylandClipboardTest, AManagerGetsWhatWasWrittenLastBeforeTheProgramEnds) {
    ours->writeString("first");
    const auto manager = program({"wl-paste", "--watch", "wc", "-c"});
    ASSERT_EQ(manager->readLine(), "5");
    ours->writeString(std::string(2'000'000, 'a'));
    ours.reset();
    EXPECT_EQ(manager->readLine(), "2000000");
}

TEST_F(WaylandClipboardTest, NothingHangsWhenTheCompositorDies) {
    const auto owner = copy({}, "gone");
    owner->signal(SIGSTOP);  // so that the read is under way
    RunningTask end(loop, stopSoon());
    end.start();
    EXPECT_EQ(failureOf(*ours), "与桌面（Wayland）的连接已断开。");
    EXPECT_EQ(failureOf(*ours, ClipboardSource::primary), "与桌面（Wayland）的连接已断开。");
    ours->writeString("nowhere");
    EXPECT_EQ(loop.complete(ours->readTypes()).size(), 0U);
}

}  // namespace
}  // namespace ovrin
