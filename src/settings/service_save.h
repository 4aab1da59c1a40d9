// The service settings as they were when a button was pressed, and how they are stored.
#pragma once

#include "model/model_api_configuration.h"

namespace ovrin {

class AppConfig;
class DefaultsStore;
class KeychainStore;

struct ServiceSave {
    ModelAPIConfiguration configuration;
    // False for what the keyring did not tell and the user did not type: it is neither written nor deleted.
    bool writesAPIKey = true;
    bool writesCustomHeaders = true;

    // The keychain first, then the preferences, up to the first failure, which is thrown (KeychainStore::KeychainError,
    // files::FileError); what was written before it stays. Blocks; any thread.
    void store(AppConfig& config, DefaultsStore& defaults, KeychainStore& keychain) const;
};

}  // namespace ovrin
