#include "settings/service_save.h"

#include <string>

#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "storage/keychain_store.h"
#include "storage/preferences.h"

namespace ovrin {

void ServiceSave::store(AppConfig& config, DefaultsStore& defaults, KeychainStore& keychain) const {
    if (writesAPIKey) {
        const std::string account(AppConfig::apiKeyAccount);
        if (configuration.apiKey.empty()) {
            keychain.deleteString(account);
        } else {
            keychain.writeString(configuration.apiKey, account);
        }
        defaults.remove({preference::legacyAPIKey});
    }
    if (writesCustomHeaders) config.saveCustomHeaders(configuration.customHeaders);
    defaults.setString(preference::apiStandard, rawValue(configuration.standard));
    defaults.setString(preference::connectionURL, configuration.connectionURL);
    defaults.setString(preference::model, configuration.model);
    defaults.setInteger(preference::maxOutputTokens, configuration.maxOutputTokens);
}

}  // namespace ovrin
