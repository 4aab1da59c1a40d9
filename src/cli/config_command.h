// ovrin config: the preferences by their stored keys, and the API key.
#pragma once

#include <stop_token>

#include "cli/arguments.h"
#include "cli/terminal.h"

namespace ovrin {
class DefaultsStore;
class KeychainStore;
}  // namespace ovrin

namespace ovrin::cli {

// They return the exit status and throw Error: an unknown key, a value of the wrong kind, a store that fails.
int showPreferences(const ConfigGet& command, const DefaultsStore& defaults, Terminal& terminal);
int changePreference(const ConfigSet& command, DefaultsStore& defaults);
int removePreference(const ConfigUnset& command, DefaultsStore& defaults);

// Reads the key from standard input, without echo on a terminal, up to its end or the first line break. Throws
// CancellationError when stopped while it waits for that.
int storeAPIKey(KeychainStore& keychain, Terminal& terminal, std::stop_token stop);
int removeAPIKey(KeychainStore& keychain);

}  // namespace ovrin::cli
