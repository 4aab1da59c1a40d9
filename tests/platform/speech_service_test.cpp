// The speech service against a server that speaks as much of its protocol (SSIP) as is needed.
#include "platform/linux/desktop/speech_service.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "base/error.h"
#include "fakes/temporary_directory.h"

namespace ovrin {
namespace {

using ::testing::Contains;

// Serves one client after the other.
class SpeechServer {
public:
    enum class Manner { answers, mute };
    static constexpr auto patience = std::chrono::seconds(30);

    explicit SpeechServer(Manner manner)
        : manner_(manner), listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const std::string path = (directory_.path() / "socket").string();
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(listener_, 1) != 0)
            throw Error("no speech server can be made");
        ::setenv("SPEECHD_ADDRESS", ("unix_socket:" + path).c_str(), 1);
        thread_ = std::thread([this] { serve(); });
    }
    SpeechServer(const SpeechServer&) = delete;
    SpeechServer& operator=(const SpeechServer&) = delete;
    ~SpeechServer() {
        ::shutdown(listener_, SHUT_RDWR);
        ::shutdown(client_, SHUT_RDWR);
        thread_.join();
        ::close(client_);
        ::close(listener_);
        ::unsetenv("SPEECHD_ADDRESS");
    }

    // Until the client has sent a line that contains these words.
    void waitFor(const std::string& words) {
        std::unique_lock lock(mutex_);
        EXPECT_TRUE(changed_.wait_for(lock, patience, [&] {
            return std::ranges::any_of(lines_, [&](const auto& line) { return line.find(words) != line.npos; });
        })) << words;
    }
    // All it has sent, once it has gone.
    std::vector<std::string> linesAtTheEnd() {
        std::unique_lock lock(mutex_);
        EXPECT_TRUE(changed_.wait_for(lock, patience, [this] { return hasEnded_; }));
        return lines_;
    }

private:
    void serve() {
        while (true) {
            const int client = ::accept(listener_, nullptr, nullptr);
            if (client < 0) return;
            setEnded(false);
            ::close(client_.exchange(client));
            listen(client);
            setEnded(true);
        }
    }

    void listen(int client) {
        std::string received;
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = ::read(client, buffer.data(), buffer.size())) > 0;) {
            received.append(buffer.data(), static_cast<std::size_t>(count));
            for (auto end = received.find("\r\n"); end != received.npos; end = received.find("\r\n")) {
                hear(received.substr(0, end));
                received.erase(0, end + 2);
            }
        }
    }
    void setEnded(bool hasEnded) {
        const std::lock_guard lock(mutex_);
        hasEnded_ = hasEnded;
        changed_.notify_all();
    }

    void hear(const std::string& line) {
        if (manner_ == Manner::answers) answer(line);
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
        changed_.notify_all();
    }

    void answer(const std::string& line) {
        if (line == ".") {
            isInText_ = false;
            return send("225-1\r\n225 OK MESSAGE QUEUED\r\n");
        }
        if (isInText_) return;
        isInText_ = line == "SPEAK";
        send(isInText_ ? "230 OK RECEIVING DATA\r\n" : "200 OK\r\n");
    }
    void send(const std::string& reply) const { ::send(client_, reply.data(), reply.size(), MSG_NOSIGNAL); }

    const Manner manner_;
    const TemporaryDirectory directory_;
    const int listener_;
    std::atomic<int> client_ = -1;
    bool isInText_ = false;  // the thread's

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> lines_;
    bool hasEnded_ = false;

    std::thread thread_;
};

TEST(SpeechServiceTest, WhatIsReadEndsWithTheProgram) {
    SpeechServer server(SpeechServer::Manner::answers);
    std::optional<SpeechService> service(std::in_place, std::chrono::minutes(1));
    auto synthesizer = service->makeSynthesizer();
    EXPECT_TRUE(synthesizer->speak({.text = "Good morning", .language = "en"}));
    server.waitFor("Good morning");
    synthesizer.reset();
    service.reset();
    const std::vector<std::string> lines = server.linesAtTheEnd();
    const auto text = std::ranges::find(lines, "Good morning");
    EXPECT_THAT(std::vector<std::string>(text, lines.end()), Contains("CANCEL SELF"));
}

TEST(SpeechServiceTest, ATextWithoutALanguageIsReadWithTheServicesOwnVoice) {
    SpeechServer server(SpeechServer::Manner::answers);
    std::optional<SpeechService> service(std::in_place, std::chrono::minutes(1));
    auto synthesizer = service->makeSynthesizer();
    EXPECT_TRUE(synthesizer->speak({.text = "Guten Morgen", .language = "de"}));
    server.waitFor("Guten Morgen");
    EXPECT_TRUE(synthesizer->speak({.text = "ok", .language = std::nullopt}));
    server.waitFor("ok");
    synthesizer.reset();
    service.reset();
    const std::vector<std::string> lines = server.linesAtTheEnd();
    const auto hasWords = [](const char* words) {
        return [words](const std::string& line) { return line.find(words) != line.npos; };
    };
    EXPECT_EQ(std::ranges::count_if(lines, hasWords("LANGUAGE")), 1);
    EXPECT_EQ(std::ranges::count_if(lines, hasWords("CLIENT_NAME")), 2);
}

TEST(SpeechServiceTest, AServiceThatDoesNotAnswerHoldsNobody) {
    SpeechServer server(SpeechServer::Manner::mute);
    std::optional<SpeechService> service(std::in_place, std::chrono::milliseconds(10));
    auto synthesizer = service->makeSynthesizer();  // whose end would take the text back
    EXPECT_TRUE(synthesizer->speak({.text = "Good morning", .language = "en"}));
    EXPECT_TRUE(synthesizer->speak({.text = "Good evening", .language = "en"}));
    server.waitFor("CLIENT_NAME");
    synthesizer.reset();
    service.reset();
}

}  // namespace
}  // namespace ovrin
