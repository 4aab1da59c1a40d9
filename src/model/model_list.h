// Which models a service has to choose from, in either standard.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/event_loop.h"
#include "base/task.h"
#include "model/model_api_configuration.h"
#include "platform/http_client.h"

namespace ovrin {

struct ModelList {
    std::vector<std::string> names;    // in the service's order, none of them empty
    std::optional<std::string> owner;  // whom the service says its first model is owned by: servers are known by it

    bool operator==(const ModelList&) const = default;
};

// None when the body is no list of models.
std::optional<ModelList> decodeModelList(std::string_view body);

// The question for the list, with the configuration's key and headers; it follows no redirect. Throws DeepSeekError
// invalidConnectionURL or invalidHeader.
HTTPRequest modelListRequest(const ModelAPIConfiguration& configuration);

// Asks the question on the I/O loop; awaited on any loop. Throws DeepSeekError, and Error when what comes back is no
// list of models. An endless list is left at its bound.
Task<ModelList> fetchModelList(EventLoop& ioLoop, HTTPClientProtocol& http, HTTPRequest request);

}  // namespace ovrin
