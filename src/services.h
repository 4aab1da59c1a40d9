// What the command line and the desktop assistant are both composed of.
#pragma once

#include <memory>
#include <stop_token>

#include "base/environment.h"
#include "base/worker_executor.h"
#include "language/translation_service.h"
#include "model/model_client.h"
#include "platform/language_identifier.h"
#include "platform/linux/network/url_session_http_client.h"
#include "platform/linux/secrets/linux_keychain.h"
#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "storage/history_store.h"
#include "storage/keychain_store.h"

namespace ovrin {

std::unique_ptr<HistoryStore> openHistory();

// The preferences and the secrets.
struct Settings {
    // closing: stopped when the program ends, so that it does not wait for a secret any longer.
    explicit Settings(std::stop_token closing = {});

    DefaultsStore defaults;
    LinuxKeychain secrets;
    KeychainStore keychain{secrets};
    AppConfig config{defaults, Environment::ofProcess, keychain};
};

// The way to the model service. The settings outlive it.
struct ModelServices {
    explicit ModelServices(const Settings& chosen);

    TranslationService translation(const LanguageIdentifier& identifier) const;

    const Settings& settings;
    URLSessionHTTPClient http;
    WorkerExecutor configurationWorker{1};  // after the loop on which its answers are awaited
    ModelClient client;
};

}  // namespace ovrin
