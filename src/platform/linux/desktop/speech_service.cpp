#include "platform/linux/desktop/speech_service.h"

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <libspeechd.h>

#include "base/environment.h"

namespace ovrin {

namespace {

// The service counts from -100 to 100 with the ordinary speed in the middle.
int serviceRate(double rate) {
    constexpr double scale = 200;
    return std::clamp(static_cast<int>(scale * rate - scale / 2), -100, 100);
}

// It knows languages by their ISO 639 code.
std::string languageCode(const std::string& tag) {
    return tag.substr(0, tag.find('-'));
}

bool isFile(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

}  // namespace

class SpeechService::Connection {
public:
    Connection() {
        char* failure = nullptr;
        connection_ = spd_open2("ovrin", "reading", nullptr, SPD_MODE_SINGLE, nullptr, 1, &failure);
        std::free(failure);  // NOLINT(cppcoreguidelines-no-malloc): the library's; nobody is there to be told
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    // What was said last would be read to its end after the connection has gone.
    ~Connection() {
        if (connection_ == nullptr) return;
        spd_cancel(connection_);
        spd_close(connection_);
    }

    bool isOpen() const { return connection_ != nullptr; }

    // The voice of a language can't be taken back: a text without one needs another connection, with the service's own.
    bool canSay(const Utterance& utterance) const { return utterance.language || !hasLanguage_; }

    // False when the service has gone.
    bool say(const Utterance& utterance) {
        if (utterance.language) spd_set_language(connection_, languageCode(*utterance.language).c_str());
        hasLanguage_ = hasLanguage_ || utterance.language;
        spd_set_voice_rate(connection_, serviceRate(utterance.rate));
        return spd_say(connection_, SPD_TEXT, utterance.text.c_str()) >= 0;
    }
    void cancel() { spd_cancel(connection_); }

private:
    SPDConnection* connection_ = nullptr;
    bool hasLanguage_ = false;
};

// What the service is to do next. Shared by the main thread and the one that talks to the service; whoever is last
// frees it.
class SpeechService::Conversation {
public:
    // Reads this in place of what is read or waits to be read.
    void speak(Utterance utterance) {
        const std::lock_guard lock(mutex_);
        next_ = std::move(utterance);
        changed_.notify_all();
    }

    void stop() {
        const std::lock_guard lock(mutex_);
        next_.reset();
        mustFallSilent_ = true;
        changed_.notify_all();
    }

    // Stops and ends the conversation; returns when it is over, or when the patience is.
    void end(std::chrono::milliseconds patience) {
        std::unique_lock lock(mutex_);
        next_.reset();
        isClosing_ = true;
        changed_.notify_all();
        changed_.wait_for(lock, patience, [this] { return isOver_; });
    }

    // The thread's whole work.
    void run() {
        converse();
        const std::lock_guard lock(mutex_);
        isOver_ = true;
        changed_.notify_all();
    }

private:
    void converse() {
        std::unique_ptr<Connection> connection;
        while (waitForOrder()) {
            if (takeSilence() && connection) connection->cancel();
            if (!hasText()) continue;
            if (!connection) connection = std::make_unique<Connection>();  // takes long: the text may be gone since
            const std::optional<Utterance> utterance = takeText();
            if (utterance && !connection->canSay(*utterance)) {
                connection.reset();
                connection = std::make_unique<Connection>();
            }
            const bool isThere = connection->isOpen() && (!utterance || connection->say(*utterance));
            if (!isThere) connection.reset();  // another try with the next
        }
    }

    // False when the conversation is to end.
    bool waitForOrder() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return next_ || mustFallSilent_ || isClosing_; });
        return !isClosing_;
    }
    bool takeSilence() {
        const std::lock_guard lock(mutex_);
        return std::exchange(mustFallSilent_, false);
    }
    bool hasText() {
        const std::lock_guard lock(mutex_);
        return next_.has_value();
    }
    std::optional<Utterance> takeText() {
        const std::lock_guard lock(mutex_);
        return std::exchange(next_, std::nullopt);
    }

    std::mutex mutex_;  // guards all
    std::condition_variable changed_;
    std::optional<Utterance> next_;
    bool mustFallSilent_ = false;
    bool isClosing_ = false;
    bool isOver_ = false;
};

class SpeechService::Synthesizer final : public SpeechSynthesizer {
public:
    explicit Synthesizer(SpeechService& service) : service_(service) {}
    Synthesizer(const Synthesizer&) = delete;
    Synthesizer& operator=(const Synthesizer&) = delete;
    ~Synthesizer() override { stop(); }

    bool speak(const Utterance& utterance) override {
        if (!isInstalled()) return false;
        service_.speak(utterance);
        return true;
    }
    void stop() override {
        if (service_.conversation_) service_.conversation_->stop();
    }

private:
    SpeechService& service_;
};

SpeechService::SpeechService(std::chrono::milliseconds patience) : patience_(patience) {}

SpeechService::~SpeechService() {
    if (conversation_) conversation_->end(patience_);
}

std::unique_ptr<SpeechSynthesizer> SpeechService::makeSynthesizer() {
    return std::make_unique<Synthesizer>(*this);
}

bool SpeechService::isInstalled() {
    const Environment environment = Environment::ofProcess();
    if (environment.value("SPEECHD_ADDRESS")) return true;
    const auto runtime = environment.value("XDG_RUNTIME_DIR");
    if (runtime && isFile(std::filesystem::path(*runtime) / "speech-dispatcher/speechd.sock")) return true;
    std::istringstream folders(environment.value("PATH").value_or(""));
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (isFile(std::filesystem::path(folder) / "speech-dispatcher")) return true;
    }
    return false;
}

void SpeechService::speak(const Utterance& utterance) {
    if (!conversation_) {
        conversation_ = std::make_shared<Conversation>();
        std::thread([conversation = conversation_] { conversation->run(); }).detach();
    }
    conversation_->speak(utterance);
}

}  // namespace ovrin
