// The front through which the windows ask a model about content. A value, usable from any thread.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/async_stream.h"
#include "model/deep_seek_types.h"
#include "model/model_client.h"

namespace ovrin {

class AIService {
public:
    explicit AIService(ModelClient client) : client_(std::move(client)) {}

    // The pieces of the answer as they arrive. Ends with the model client's error; dropping it ends the request.
    AsyncStream<std::string> stream(std::vector<DeepSeek::Message> messages) const {
        return client_.stream(std::move(messages), 0.2);
    }

private:
    ModelClient client_;
};

}  // namespace ovrin
