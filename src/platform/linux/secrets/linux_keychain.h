// The keychain of the Linux desktop: the session's secret service, and where none answers a file that only the user
// can read. What was put into the file moves into the service as soon as a read reaches that. Where both have a secret
// the service's is the newer one; a deletion that the file notes is made up for.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/keychain.h"
#include "platform/linux/secrets/keychain_file.h"
#include "platform/linux/secrets/secret_service.h"

namespace ovrin {

class LinuxKeychain : public Keychain {
public:
    // The file's folder is the program's own.
    LinuxKeychain(SecretService service, std::filesystem::path file);

    KeychainMatch copyMatching(const KeychainItem& item) override;
    KeychainStatus update(const KeychainItem& item, std::string_view data) override;
    KeychainStatus add(const KeychainItem& item, std::string_view data) override;
    KeychainStatus remove(const KeychainItem& item) override;
    bool isKeptInFile() override;
    std::optional<std::string> message(KeychainStatus status) const override;

private:
    KeychainMatch moveToService(const KeychainItem& item, std::string inFile, KeychainMatch inService);
    KeychainMatch catchUpOnDeletion(const KeychainItem& item);
    void forgetInFile(const KeychainItem& item);
    KeychainStatus putInFile(const KeychainItem& item, std::string_view data);

    SecretService service_;
    KeychainFile file_;
};

}  // namespace ovrin
