#include "cli/terminal.h"

#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "cli/channels.h"
#include "cli/output_watch.h"

namespace ovrin::cli {
namespace {

class TerminalTest : public testing::Test {
protected:
    static void SetUpTestSuite() { std::signal(SIGPIPE, SIG_IGN); }

    Channels channels_;
};

TEST_F(TerminalTest, WritesAllThroughAPipeThatTakesItInParts) {
    ::fcntl(channels_.output.writing(), F_SETPIPE_SZ, 4096);
    ::fcntl(channels_.output.writing(), F_SETFL, O_NONBLOCK);
    const std::string text(300'000, 'x');
    std::thread writer([&] {
        channels_.terminal.write(text);
        channels_.output.closeWriting();
    });
    std::string received;
    std::array<char, 1000> buffer{};
    for (ssize_t count = 0; (count = ::read(channels_.output.reading(), buffer.data(), buffer.size())) > 0;)
        received.append(buffer.data(), static_cast<std::size_t>(count));
    writer.join();
    EXPECT_EQ(received, text);
}

TEST_F(TerminalTest, TellsAReaderThatHasGoneFromADeviceThatFails) {
    channels_.output.closeReading();
    EXPECT_THROW(channels_.terminal.write("x"), OutputClosed);

    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    Terminal terminal(channels_.input.reading(), full, channels_.error.writing());
    EXPECT_THROW(terminal.write("x"), Error);
    ::close(full);
}

TEST_F(TerminalTest, ATerminalDoesNotObeyWhatOthersWrote) {
    const std::string text = "译\t\x1B[2J\x7F\u009B31m\u00A0";
    channels_.terminal.writeForeign(text);
    EXPECT_EQ(channels_.output.drained(), text);

    const int screen = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(::grantpt(screen) + ::unlockpt(screen), 0);
    const int device = ::open(::ptsname(screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const Terminal terminal(channels_.input.reading(), device, device);
    std::array<char, 100> shown{};
    terminal.writeForeign(text);
    EXPECT_GT(::read(screen, shown.data(), shown.size()), 0);
    EXPECT_STREQ(shown.data(), "译\t␛[2J␡\uFFFD31m\u00A0");
    ::close(device);
    ::close(screen);
}

TEST_F(TerminalTest, ReadsNoMoreThanItsBound) {
    channels_.type("12345");
    EXPECT_THROW(channels_.terminal.readAll(4), Error);
    Channels others;
    others.type("12345");
    EXPECT_EQ(others.terminal.readAll(5), "12345");
}

TEST_F(TerminalTest, SecretIsTheFirstLineOnly) {
    channels_.type("sk-1\nrest");
    EXPECT_EQ(channels_.terminal.readSecretLine("Key: "), "sk-1");
    EXPECT_EQ(channels_.error.drained(), "");  // nobody to ask
    Channels others;
    others.type("sk-2");
    EXPECT_EQ(others.terminal.readSecretLine("Key: "), "sk-2");
}

TEST_F(TerminalTest, StopEndsAWaitForInput) {
    std::stop_source stop;
    std::thread user([&] { stop.request_stop(); });
    EXPECT_THROW(channels_.terminal.readAll(100, stop.get_token()), CancellationError);
    user.join();
}

TEST_F(TerminalTest, WatchAsksForAStopWhenTheReaderGoesAndOnlyThen) {
    {
        std::stop_source outer;
        const OutputWatch stopped(channels_.output.writing(), outer.get_token());
        outer.request_stop();
        EXPECT_TRUE(stopped.token().stop_requested());
        EXPECT_FALSE(stopped.readerHasGone());
    }
    const OutputWatch watch(channels_.output.writing(), {});
    EXPECT_FALSE(watch.token().stop_requested());
    channels_.output.closeReading();
    while (!watch.token().stop_requested()) std::this_thread::yield();
    EXPECT_TRUE(watch.readerHasGone());
}

}  // namespace
}  // namespace ovrin::cli
