// The parts of a conversation with a model service that both wire standards have in common.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "base/async_stream.h"
#include "base/task.h"
#include "model/deep_seek_error.h"
#include "model/event_decoding.h"
#include "platform/http_client.h"

namespace ovrin {

// Whether an answer is asked for piece by piece or in one.
enum class Delivery { streamed, whole };

// How a standard reads what comes back.
struct AnswerRules {
    DecodeEventLine decodeEventLine;
    DeepSeekError (*mapHTTPError)(int status, std::string_view body);
};

// Opens the response. Throws DeepSeekError when none arrives.
Task<HTTPBytes> openAnswer(HTTPClientProtocol& httpClient, HTTPRequest request);

// The body of a response outside 200-299, cut at its bound and not in the middle of a character.
Task<std::string> collectErrorBody(AsyncStream<std::string> chunks);

// The POST request of either standard without its authentication; the custom headers are set by setCustomHeaders(),
// after every other header.
HTTPRequest makePostRequest(std::string url, std::string body, Delivery delivery);

// Nothing for an empty key. A request for a service of this machine or the network at home goes there straight: the key
// that stands for none is for no proxy.
void setKey(HTTPRequest& request, std::string_view key, std::string_view header, std::string_view prefix = {});
void setCustomHeaders(HTTPRequest& request, const std::map<std::string, std::string>& customHeaders);

// A service that takes no temperature said so: HTTP 400, whose error names the parameter or tells of it.
class RefusedTemperature final : public DeepSeekError {
public:
    explicit RefusedTemperature(DeepSeekError error) : DeepSeekError(std::move(error)) {}
};

// Sends the request and pushes the pieces of its answer as they arrive; an empty one says that the model thinks.
// Returns at the end of the answer; throws DeepSeekError (RefusedTemperature before any piece has come), or unchanged
// what the body failed with. Nothing is pushed once a stop has been requested.
Task<void> streamAnswer(HTTPClientProtocol& httpClient, HTTPRequest request, AnswerRules rules,
                        StreamWriter<std::string>& pieces);

// Sends the request and gives the body of a successful answer. Throws DeepSeekError (RefusedTemperature among them).
Task<std::string> wholeAnswer(HTTPClientProtocol& httpClient, HTTPRequest request, AnswerRules rules);

// The error of a response outside 200-299 whose body is not the service's error body.
DeepSeekError httpStatusError(int status, std::string_view body);

// The error of a successful body that did not decode for want of the field (or for not being JSON at all).
DeepSeekError decodingError(std::string_view body, std::string_view field);

}  // namespace ovrin
