#include "platform/linux/secrets/linux_keychain.h"

#include <utility>

#include "base/files.h"
#include "base/text.h"
#include "platform/linux/secrets/keychain_status.h"

namespace ovrin {
namespace {

using State = KeychainFile::Entry::State;

// The status of work on the file: its own, or that of the failure it ended with.
template <typename Work>
KeychainStatus statusOf(Work work) {
    try {
        return work();
    } catch (const files::FileError& error) {
        return keychainFileErrorBase + error.code();
    }
}

}  // namespace

LinuxKeychain::LinuxKeychain(SecretService service, std::filesystem::path file)
    : service_(std::move(service)), file_(std::move(file)) {}

KeychainMatch LinuxKeychain::copyMatching(const KeychainItem& item) {
    KeychainFile::Entry entry;
    const KeychainStatus fileStatus = statusOf([&] {
        entry = file_.entry(item);
        return entry.state == State::damaged ? keychainDamagedFile : keychainSuccess;
    });
    if (entry.state == State::deleted) return catchUpOnDeletion(item);
    KeychainMatch match = service_.find(item);
    if (entry.state == State::present) return moveToService(item, std::move(entry.data), std::move(match));
    if (match.status != keychainUnavailable) return match;
    return {.status = fileStatus == keychainSuccess ? keychainItemNotFound : fileStatus};
}

// The service takes what it lacks; what it has is the newer one. As long as it does not answer, the file counts.
KeychainMatch LinuxKeychain::moveToService(const KeychainItem& item, std::string inFile, KeychainMatch inService) {
    if (inService.status == keychainItemNotFound && service_.store(item, inFile) == keychainSuccess) {
        inService = {.status = keychainSuccess, .data = inFile};
    }
    if (inService.status != keychainSuccess) return {.status = keychainSuccess, .data = std::move(inFile)};
    forgetInFile(item);
    return inService;
}

KeychainMatch LinuxKeychain::catchUpOnDeletion(const KeychainItem& item) {
    const KeychainStatus status = service_.remove(item);
    if (status == keychainSuccess || status == keychainItemNotFound) forgetInFile(item);
    return {.status = keychainItemNotFound};
}

// A file that cannot be written does not spoil what was read; the next read tries again.
void LinuxKeychain::forgetInFile(const KeychainItem& item) {
    statusOf([&] {
        file_.forget(item);
        return keychainSuccess;
    });
}

KeychainStatus LinuxKeychain::update(const KeychainItem& item, std::string_view data) {
    return statusOf([&] {
        const bool isInFile = file_.entry(item).state == State::present;
        KeychainStatus status = service_.replace(item, data);
        if (status == keychainUnavailable) return isInFile ? putInFile(item, data) : keychainItemNotFound;
        if (status == keychainItemNotFound && isInFile) status = service_.store(item, data);
        if (status == keychainSuccess) file_.forget(item);
        return status;
    });
}

KeychainStatus LinuxKeychain::add(const KeychainItem& item, std::string_view data) {
    return statusOf([&] {
        const KeychainStatus status = service_.store(item, data);
        if (status == keychainUnavailable) return putInFile(item, data);
        if (status == keychainSuccess) file_.forget(item);
        return status;
    });
}

KeychainStatus LinuxKeychain::remove(const KeychainItem& item) {
    return statusOf([&] {
        const KeychainStatus inFile =
            file_.entry(item).state == State::present ? keychainSuccess : keychainItemNotFound;
        const KeychainStatus inService = service_.remove(item);
        if (inService == keychainUnavailable) {
            file_.setDeleted(item);
            file_.removeKeptAside();
            return inFile;
        }
        if (inService != keychainSuccess && inService != keychainItemNotFound) return inService;
        file_.forget(item);
        file_.removeKeptAside();
        return inService == keychainSuccess ? keychainSuccess : inFile;
    });
}

bool LinuxKeychain::isKeptInFile() {
    return !service_.isAvailable();
}

std::optional<std::string> LinuxKeychain::message(KeychainStatus status) const {
    return keychainMessage(status);
}

KeychainStatus LinuxKeychain::putInFile(const KeychainItem& item, std::string_view data) {
    if (!text::isValidUtf8(data)) return keychainInvalidData;
    file_.set(item, data);
    return keychainSuccess;
}

}  // namespace ovrin
