// Model services of this machine and of the network at home, which ask for no key.
#pragma once

#include <string_view>

#include "model/model_api_configuration.h"

namespace ovrin {

// Stands in for the key that such a service does not ask for. It is never stored or shown, and goes to the service
// alone: no proxy gets to see it.
inline constexpr std::string_view localServiceKey = "local";

// Whether a URL's host is loopback, a literal private or link-local address, or a name ending in .local.
bool isLocalService(std::string_view connectionURL);

// The configuration with localServiceKey where it leads to a local service and has nothing that authenticates; else as
// it is. For what is about to be checked or sent, never for what is stored.
ModelAPIConfiguration withLocalKey(ModelAPIConfiguration configuration);

}  // namespace ovrin
