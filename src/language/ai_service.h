// The front through which the windows ask a model about content. A value, usable from any thread.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/async_stream.h"
#include "base/task.h"
#include "model/deep_seek_types.h"
#include "model/model_client.h"

namespace ovrin {

class AIService {
public:
    explicit AIService(ModelClient client) : client_(std::move(client)) {}

    // The answer as it grows. Ends with the model client's error; dropping it ends the request.
    AsyncStream<AnswerChange> stream(std::vector<DeepSeek::Message> messages) const {
        return client_.stream(std::move(messages), temperature);
    }

    // The whole answer, never empty. Fails with the model client's error.
    Task<std::string> complete(std::vector<DeepSeek::Message> messages) const {
        return client_.complete(std::move(messages), temperature);
    }

private:
    static constexpr double temperature = 0.2;

    ModelClient client_;
};

}  // namespace ovrin
