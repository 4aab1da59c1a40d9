#include "platform/linux/x11/x11_clipboard.h"

#include <chrono>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/running_task.h"
#include "fakes/temporary_directory.h"
#include "fakes/x_test_server.h"
#include "platform/clipboard_fixture.h"
#include "platform/linux/x11/x11_connection.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

// A 2 x 1 picture, blue and red, as a BMP file.
std::string bitmapFile() {
    std::string file("BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0", 30);
    file += std::string(24, '\0') + std::string("\xff\0\0\0\0\xff\0\0", 8);
    return file;
}

// A window without any help, on a connection of somebody else's.
class BareClient {
public:
    explicit BareClient(xcb_connection_t* connection) : connection_(connection), window_(xcb_generate_id(connection)) {
        constexpr std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        xcb_create_window(connection, 0, window_, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    }

    xcb_window_t window() const { return window_; }

    xcb_atom_t atom(const std::string& name) const {
        const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

    // Blocks until there is one of this kind; none when the server has gone.
    X11Event waitFor(std::uint8_t type) const {
        while (true) {
            X11Event event(xcb_wait_for_event(connection_));
            if (!event || (event->response_type & 0x7FU) == type) return event;
        }
    }

    // Answers the next two requests: what forms there are, and the text.
    void answerWithText(const std::string& text) const {
        const xcb_atom_t form = atom("UTF8_STRING");
        for (const bool isList : {true, false}) {
            const X11Event event = waitFor(XCB_SELECTION_REQUEST);
            if (!event) return;
            const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(*event);
            xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                                isList ? static_cast<xcb_atom_t>(XCB_ATOM_ATOM) : form, isList ? 32 : 8,
                                isList ? 1 : static_cast<std::uint32_t>(text.size()),
                                isList ? static_cast<const void*>(&form) : text.data());
            notify(request);
        }
    }

    // Tells whoever asked that the answer is there.
    void notify(const xcb_selection_request_event_t& request) const {
        xcb_selection_notify_event_t notice{};
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        notice.property = request.property;
        xcb_send_event(connection_, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&notice));
        xcb_flush(connection_);
    }

    // What is in the property, which is deleted.
    std::vector<std::byte> take(xcb_atom_t property) const {
        const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            connection_, xcb_get_property(connection_, 1, window_, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1U << 24U),
            nullptr));
        if (!reply) return {};
        const auto* const first = static_cast<const std::byte*>(xcb_get_property_value(reply.get()));
        return {first, first + xcb_get_property_value_length(reply.get())};
    }

private:
    xcb_connection_t* connection_;
    xcb_window_t window_;
};

// A clipboard manager that saves one form, with a pause before every piece of it.
class SlowClipboardManager {
public:
    SlowClipboardManager(const char* display, const std::string& form, std::chrono::milliseconds pause)
        : connection_(connectToX11(display)), client_(connection_.get()), form_(client_.atom(form)), pause_(pause) {
        xcb_set_selection_owner(connection_.get(), client_.window(), client_.atom("CLIPBOARD_MANAGER"),
                                XCB_CURRENT_TIME);
        property_ = client_.atom("SAVED");  // once this is answered everybody sees the owner
        thread_ = std::thread([this] { save(); });
    }
    SlowClipboardManager(const SlowClipboardManager&) = delete;
    SlowClipboardManager& operator=(const SlowClipboardManager&) = delete;
    ~SlowClipboardManager() {
        if (thread_.joinable()) thread_.join();
    }

    // What it has got when it is done or the server has gone. Call once.
    const std::vector<std::byte>& saved() {
        thread_.join();
        return saved_;
    }

private:
    void save() {
        const X11Event event = client_.waitFor(XCB_SELECTION_REQUEST);
        if (!event) return;
        const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(*event);
        xcb_convert_selection(connection_.get(), client_.window(), client_.atom("CLIPBOARD"), form_, property_,
                              request.time);
        xcb_flush(connection_.get());
        client_.waitFor(XCB_SELECTION_NOTIFY);
        client_.take(property_);  // says that pieces follow
        while (appendPiece()) {
        }
        client_.notify(request);
    }

    bool appendPiece() {
        while (true) {
            const X11Event event = client_.waitFor(XCB_PROPERTY_NOTIFY);
            if (!event) return false;
            const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
            if (notice.atom == property_ && notice.state == XCB_PROPERTY_NEW_VALUE) break;
        }
        std::this_thread::sleep_for(pause_);
        const std::vector<std::byte> piece = client_.take(property_);
        saved_.insert(saved_.end(), piece.begin(), piece.end());
        return !piece.empty();
    }

    X11Connection connection_;
    BareClient client_;
    xcb_atom_t form_;
    xcb_atom_t property_ = XCB_ATOM_NONE;
    std::chrono::milliseconds pause_;
    std::vector<std::byte> saved_;
    std::thread thread_;
};

class X11ClipboardTest : public ClipboardTest {
protected:
    void SetUp() override {
        if (!XTestServer::isInstalled()) GTEST_SKIP() << "Xvfb is not installed (Debian package xvfb)";
        server = std::make_unique<XTestServer>();
        ours = connect();
        theirs = connect();
    }

    std::unique_ptr<ClipboardService> connect(std::chrono::milliseconds patience = SelectionClient::defaultPatience) {
        return std::make_unique<X11Clipboard>(server->display(), decoder, encoder, workers, patience);
    }

    // Reads once every write so far is done: each program's jobs keep their order.
    template <typename Read>
    auto settled(Read read) {
        loop.complete(ours->readString());
        loop.complete(theirs->readString());
        return loop.complete(read());
    }

    std::optional<std::string> string(ClipboardService& of) {
        return settled([&of] { return of.readString(); });
    }
    std::vector<ClipboardItem> items(ClipboardService& of) {
        return settled([&of] { return everything(of); });
    }
    static Task<std::vector<ClipboardItem>> everything(ClipboardService& of) {
        const std::vector<std::vector<std::string>> types = co_await of.readTypes();
        std::vector<ClipboardItem> items(types.size());
        for (std::size_t i = 0; i < types.size(); ++i) {
            for (const std::string& type : types[i]) {
                std::vector<std::byte> data = co_await of.readForm(i, type);
                items[i].push_back({.type = type, .data = std::move(data)});
            }
        }
        co_return items;
    }
    std::optional<Image> image(ClipboardService& of) {
        return settled([&of] { return of.readImage(); });
    }

    // Another program takes the clipboard and answers nobody.
    void makeSilentOwner() const {
        const BareClient silent(server->connection());
        xcb_set_selection_owner(server->connection(), silent.window(), silent.atom("CLIPBOARD"), XCB_CURRENT_TIME);
        server->synchronize();
    }

    std::unique_ptr<XTestServer> server;
    std::unique_ptr<ClipboardService> ours;
    std::unique_ptr<ClipboardService> theirs;
};

TEST_F(X11ClipboardTest, TextGoesFromProgramToProgram) {
    EXPECT_EQ(string(*theirs), std::nullopt);
    ours->writeString("识别结果 “ok” 🙂\n第二行");
    loop.complete(ours->readString());  // what was written is there
    EXPECT_EQ(loop.complete(theirs->readString()), "识别结果 “ok” 🙂\n第二行");
    EXPECT_EQ(ours->readCount(), 1) << "the list of forms is none of the contents";
    theirs->writeString("");
    EXPECT_EQ(string(*ours), "");
}

TEST_F(X11ClipboardTest, EveryFormComesBackByteForByteHoweverLarge) {
    const std::vector<ClipboardItem> saved{{{"text/html", bytesOf("<b>粗</b>")},
                                            {"application/x-own", bytesOf(largeData())},
                                            {"UTF8_STRING", bytesOf("粗")}}};
    theirs->writeItems(saved);
    EXPECT_EQ(items(*ours), saved);
    ours->writeItems(items(*ours));
    EXPECT_EQ(items(*theirs), saved);
}

TEST_F(X11ClipboardTest, EncodingsThatWereNotSavedAreMadeWhenSomebodyAsks) {
    const std::string picture(1'000'000, 'p');
    ours->writeItems({{{"text/plain", bytesOf("alt")},
                       {.type = "image/x-large", .encodedFrom = "image/png"},
                       {.type = "image/tiff", .encodedFrom = "image/png"},
                       {"image/png", bytesOf(picture)}}});
    const std::vector<ClipboardItem> offered{{{"text/plain", bytesOf("alt")},
                                              {"image/x-large", bytesOf("image/x-large of " + picture)},
                                              {"image/png", bytesOf(picture)}}};
    EXPECT_EQ(items(*theirs), offered);
}

TEST_F(X11ClipboardTest, AReadThatIsGivenUpKeepsNoOtherWaiting) {
    makeSilentOwner();
    auto patient = connect(1h);
    const auto read = [](ClipboardService& from) -> Task<void> { co_await from.readForm(0, "image/png"); };
    std::optional<RunningTask> reading(std::in_place, loop, read(*patient));
    reading->start();
    ASSERT_TRUE(BareClient(server->connection()).waitFor(XCB_SELECTION_REQUEST));  // it waits now
    patient->writeString("next");
    reading.reset();
    EXPECT_EQ(loop.complete(patient->readString()), "next");
}

TEST_F(X11ClipboardTest, TwoLargeReadsAtOnceGetTheirOwnBytes) {
    const std::string large = std::string(2'000'000, 'a') + "end";
    ours->writeString(large);
    const auto third = connect();
    loop.complete(ours->readString());
    const auto both = [](ClipboardService& first, ClipboardService& second, RunLoop& home) -> Task<std::string> {
        std::optional<std::string> other;
        TaskGroup group(home);
        const auto readOther = [](ClipboardService& from, std::optional<std::string>& into) -> Task<void> {
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

TEST_F(X11ClipboardTest, AnOwnerThatNeverAnswersIsToldOf) {
    makeSilentOwner();
    const auto impatient = connect(20ms);
    EXPECT_EQ(failureOf(*impatient), "复制内容的程序没有响应，请重新复制后再试。");
    EXPECT_TRUE(loop.complete(impatient->readTypes()).empty());
    impatient->writeString("still works");
    loop.complete(impatient->readString());
    EXPECT_EQ(loop.complete(theirs->readString()), "still works");
}

TEST_F(X11ClipboardTest, ClosingWaitsForNoOwnerAndLosesNothing) {
    makeSilentOwner();
    auto closing = connect(1h);
    const auto read = [](ClipboardService& from) -> Task<void> { co_await from.readTypes(); };
    RunningTask first(loop, read(*closing));
    RunningTask second(loop, read(*closing));
    first.start();
    second.start();
    ASSERT_TRUE(BareClient(server->connection()).waitFor(XCB_SELECTION_REQUEST));  // it waits now
    const std::string large(1'000'000, 'a');
    SlowClipboardManager manager(server->display(), "UTF8_STRING", 0ms);
    closing->writeString(large);
    closing.reset();
    server->stop();
    EXPECT_EQ(manager.saved(), bytesOf(large));
}

TEST_F(X11ClipboardTest, AManagerMayTakeItsTimeAsLongAsItGoesOn) {
    const auto patience = 500ms;
    const auto pause = 100ms;  // more of them than fit into the patience
    const std::vector<std::byte> large = bytesOf(std::string(3'000'000, 'a'));
    SlowClipboardManager manager(server->display(), "image/png", pause);
    auto closing = connect(patience);
    closing->writeItems({{{"image/png", large}}});
    closing.reset();
    server->stop();
    EXPECT_EQ(manager.saved(), large);
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
    theirs->writeItems({{{"image/png", bytesOf("not a picture")}, {"image/bmp", bytesOf(bitmapFile())}}});
    EXPECT_TRUE(image(*ours));
}

TEST_F(X11ClipboardTest, AFileThatWouldKeepItsReaderWaitingIsNoPicture) {
    const TemporaryDirectory directory;
    const std::string pipe = directory.path() / "pipe.png";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    theirs->writeItems({{{"text/uri-list", bytesOf("file://" + pipe)}}});
    EXPECT_FALSE(image(*ours));
}

TEST_F(X11ClipboardTest, WhatIsSelectedIsReadBesideTheClipboard) {
    EXPECT_EQ(loop.complete(ours->readString(ClipboardSource::primary)), std::nullopt);
    theirs->writeString("copied");
    ASSERT_EQ(string(*ours), "copied");
    BareClient selecting(server->connection());
    xcb_set_selection_owner(server->connection(), selecting.window(), XCB_ATOM_PRIMARY, XCB_CURRENT_TIME);
    server->synchronize();
    std::thread program([&] { selecting.answerWithText("selected"); });
    EXPECT_EQ(loop.complete(ours->readString(ClipboardSource::primary)), "selected");
    program.join();
    EXPECT_EQ(string(*ours), "copied");
}

TEST_F(X11ClipboardTest, NothingHangsWhenTheServerDies) {
    theirs->writeString("gone");
    server->stop();
    EXPECT_EQ(failureOf(*ours), "与显示服务器的连接已断开。");
    ours->writeString("nowhere");
    EXPECT_EQ(loop.complete(ours->readTypes()).size(), 0U);
}

}  // namespace
}  // namespace ovrin
