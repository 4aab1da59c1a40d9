#include "services.h"

#include <chrono>
#include <utility>

#include "base/text.h"
#include "base/user_directories.h"
#include "platform/linux/secrets/secret_service.h"
#include "storage/preferences.h"

namespace ovrin {

namespace {

LinuxKeychain openKeychain(std::stop_token closing) {
    const Environment environment = Environment::ofProcess();
    return {SecretService(sessionBus(environment), {}, std::move(closing)), keychainFile(environment)};
}

}  // namespace

std::unique_ptr<HistoryStore> openHistory() {
    const Environment environment = Environment::ofProcess();
    return std::make_unique<HistoryStore>(historyFile(environment), text::caseRules(environment),
                                          std::chrono::system_clock::now);
}

Settings::Settings(std::stop_token closing)
    : defaults(preferencesFile(Environment::ofProcess())), secrets(openKeychain(std::move(closing))) {}

ModelServices::ModelServices(const Settings& chosen)
    : settings(chosen),
      http(Environment::ofProcess()),
      client(http.loop(), http,
             ModelClient::readingOn(configurationWorker, [&chosen] { return chosen.config.modelAPIConfiguration(); })) {
}

TranslationService ModelServices::translation(const LanguageIdentifier& identifier) const {
    return {client, identifier,
            [&chosen = settings] { return chosen.defaults.string(preference::translationPrompt).value_or(""); },
            std::chrono::system_clock::now};
}

}  // namespace ovrin
