// What the secret stores of the Linux desktop answer when they do not succeed.
#pragma once

#include <optional>
#include <string>

#include "platform/keychain.h"

namespace ovrin {

inline constexpr KeychainStatus keychainInvalidData = -50;        // the file holds text only
inline constexpr KeychainStatus keychainUnavailable = -25291;     // no bus, or nobody on it offers the service
inline constexpr KeychainStatus keychainRefused = -25293;         // the service answered with an error
inline constexpr KeychainStatus keychainLocked = -25308;          // the user did not unlock the collection
inline constexpr KeychainStatus keychainTimedOut = -25400;        // the service did not answer in time
inline constexpr KeychainStatus keychainDamagedFile = -26275;     // the file is not what the program wrote
inline constexpr KeychainStatus keychainFileErrorBase = 100'000;  // plus errno: the file cannot be read or written

std::optional<std::string> keychainMessage(KeychainStatus status);

}  // namespace ovrin
