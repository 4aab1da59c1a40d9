#include "platform/linux/speech_service.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <system_error>

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
    ~Connection() {
        if (connection_ != nullptr) spd_close(connection_);
    }

    bool isOpen() const { return connection_ != nullptr; }

    // False when the service has gone.
    bool say(const Utterance& utterance) {
        if (utterance.language) spd_set_language(connection_, languageCode(*utterance.language).c_str());
        spd_set_voice_rate(connection_, serviceRate(utterance.rate));
        return spd_say(connection_, SPD_TEXT, utterance.text.c_str()) >= 0;
    }
    void cancel() { spd_cancel(connection_); }

private:
    SPDConnection* connection_ = nullptr;
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
    void stop() override { service_.stop(); }

private:
    SpeechService& service_;
};

SpeechService::SpeechService() = default;

SpeechService::~SpeechService() {
    ++latest_;
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
    if (!worker_) worker_.emplace(1);
    worker_->post([this, utterance, number = ++latest_](const std::stop_token&) {
        if (number != latest_) return;
        if (!connection_) connection_ = std::make_unique<Connection>();
        if (number != latest_) return;
        if (!connection_->isOpen() || !connection_->say(utterance)) connection_.reset();  // another try with the next
    });
}

void SpeechService::stop() {
    if (!worker_) return;
    ++latest_;
    worker_->post([this](const std::stop_token&) {
        if (connection_ && connection_->isOpen()) connection_->cancel();
    });
}

}  // namespace ovrin
