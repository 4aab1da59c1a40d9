#include "platform/linux/x11_clipboard.h"

#include <chrono>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "fakes/temporary_directory.h"
#include "fakes/x_test_server.h"
#include "platform/linux/image_decoder.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

std::vector<std::byte> bytesOf(const std::string& text) {
    std::vector<std::byte> bytes(text.size());
    std::memcpy(bytes.data(), text.data(), text.size());
    return bytes;
}

// A 2 x 1 picture, blue and red, as a BMP file.
std::string bitmapFile() {
    std::string file("BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0", 30);
    file += std::string(24, '\0') + std::string("\xff\0\0\0\0\xff\0\0", 8);
    return file;
}

class X11ClipboardTest : public testing::Test {
protected:
    void SetUp() override {
        if (!XTestServer::isInstalled()) GTEST_SKIP() << "Xvfb is not installed (Debian package xvfb)";
        server = std::make_unique<XTestServer>();
        ours = connect();
        theirs = connect();
    }

    std::unique_ptr<X11Clipboard> connect(std::chrono::milliseconds patience = X11Selection::defaultPatience) {
        return std::make_unique<X11Clipboard>(server->display(), decoder, workers, patience);
    }

    // Reads once every write so far is done: each program's jobs keep their order.
    template <typename Read>
    auto settled(Read read) {
        loop.complete(ours->readString());
        loop.complete(theirs->readString());
        return loop.complete(read());
    }

    std::optional<std::string> string(X11Clipboard& of) {
        return settled([&of] { return of.readString(); });
    }
    std::vector<ClipboardItem> items(X11Clipboard& of) {
        return settled([&of] { return of.readItems(); });
    }
    std::optional<Image> image(X11Clipboard& of) {
        return settled([&of] { return of.readImage(); });
    }

    RunLoop loop;
    LinuxImageDecoder decoder;
    WorkerExecutor workers{1};
    std::unique_ptr<XTestServer> server;
    std::unique_ptr<X11Clipboard> ours;
    std::unique_ptr<X11Clipboard> theirs;
};

TEST_F(X11ClipboardTest, TextGoesFromProgramToProgram) {
    EXPECT_EQ(string(*theirs), std::nullopt);
    ours->writeString("识别结果 “ok” 🙂\n第二行");
    EXPECT_EQ(string(*theirs), "识别结果 “ok” 🙂\n第二行");
    theirs->writeString("");
    EXPECT_EQ(string(*ours), "");
}

TEST_F(X11ClipboardTest, EveryFormComesBackByteForByteHoweverLarge) {
    std::string large(3'000'000, '\0');
    for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>(i * 7919 >> 5U);
    const std::vector<ClipboardItem> saved{
        {{"text/html", bytesOf("<b>粗</b>")}, {"application/x-own", bytesOf(large)}, {"UTF8_STRING", bytesOf("粗")}}};
    theirs->writeItems(saved);
    EXPECT_EQ(items(*ours), saved);
    ours->writeItems(items(*ours));
    EXPECT_EQ(items(*theirs), saved);
}

TEST_F(X11ClipboardTest, TwoLargeReadsAtOnceGetTheirOwnBytes) {
    const std::string large = std::string(2'000'000, 'a') + "end";
    ours->writeString(large);
    const auto third = connect();
    loop.complete(ours->readString());
    const auto both = [](X11Clipboard& first, X11Clipboard& second, RunLoop& home) -> Task<std::string> {
        std::optional<std::string> other;
        TaskGroup group(home);
        const auto readOther = [](X11Clipboard& from, std::optional<std::string>& into) -> Task<void> {
            into = co_await from.readString();
        };
        group.start(readOther(second, other));
        const std::optional<std::string> own = co_await first.readString();
        while (!other) co_await sleepFor(1ms);
        co_return own.value_or("") == *other ? *other : "differ";
    };
    EXPECT_EQ(loop.complete(both(*theirs, *third, loop)), large);
}

TEST_F(X11ClipboardTest, AChangeIsCountedOnceWhoeverMadeIt) {
    const auto before = ours->changeCount();
    ours->writeString("one");
    const auto afterOwn = ours->changeCount();
    EXPECT_NE(afterOwn, before);
    EXPECT_EQ(string(*theirs), "one");
    EXPECT_EQ(ours->changeCount(), afterOwn);  // the server's word of it is no second change
    theirs->writeString("two");
    EXPECT_EQ(string(*ours), "two");
    const auto afterTheirs = ours->changeCount();
    EXPECT_NE(afterTheirs, afterOwn);
    ours->writeItems({});
    EXPECT_TRUE(items(*theirs).empty());
    EXPECT_EQ(ours->changeCount(), afterTheirs + 1);
}

TEST_F(X11ClipboardTest, AnOwnerThatNeverAnswersHasNothing) {
    xcb_connection_t* const silent = server->connection();
    const xcb_window_t window = xcb_generate_id(silent);
    xcb_create_window(silent, 0, window, server->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    const std::string name = "CLIPBOARD";
    const auto cookie = xcb_intern_atom(silent, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const X11Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(silent, cookie, nullptr));
    xcb_set_selection_owner(silent, window, atom->atom, XCB_CURRENT_TIME);
    server->synchronize();

    const auto impatient = connect(20ms);
    EXPECT_EQ(loop.complete(impatient->readString()), std::nullopt);
    impatient->writeString("still works");
    loop.complete(impatient->readString());
    EXPECT_EQ(loop.complete(theirs->readString()), "still works");
}

TEST_F(X11ClipboardTest, PicturesComeAsBytesOrAsACopiedFile) {
    theirs->writeItems({{{"text/plain", bytesOf("alt")}, {"image/bmp", bytesOf(bitmapFile())}}});
    const std::optional<Image> direct = image(*ours);
    ASSERT_TRUE(direct);
    EXPECT_EQ(direct->width(), 2);
    EXPECT_EQ(direct->data()[0], 0xff);

    const TemporaryDirectory directory;
    const auto file = directory.path() / "图 片.bmp";
    std::ofstream(file) << bitmapFile();
    theirs->writeItems(
        {{{"text/uri-list", bytesOf("file://" + directory.path().string() + "/%E5%9B%BE%20%E7%89%87.bmp\r\n")}}});
    EXPECT_TRUE(image(*ours));
    theirs->writeItems({{{"text/uri-list", bytesOf("file:///nowhere/picture.png\r\n")}}});
    EXPECT_FALSE(image(*ours));
    theirs->writeItems({{{"image/png", bytesOf("not a picture")}}});
    EXPECT_FALSE(image(*ours));
}

TEST_F(X11ClipboardTest, NothingHangsWhenTheServerDies) {
    theirs->writeString("gone");
    server->stop();
    EXPECT_EQ(loop.complete(ours->readString()), std::nullopt);
    ours->writeString("nowhere");
    EXPECT_EQ(loop.complete(ours->readItems()).size(), 0U);
}

}  // namespace
}  // namespace ovrin
