#include "platform/linux/network/url_session_http_client.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/async_stream.h"

namespace ovrin {

URLSessionHTTPClient::URLSessionHTTPClient(const Environment& environment)
    : settings_{.userAgent = "Ovrin/" OVRIN_VERSION, .caFile = environment.value("SSL_CERT_FILE").value_or("")} {}

Task<HTTPData> URLSessionHTTPClient::data(HTTPRequest request) {
    HTTPBytes bytes = co_await this->bytes(std::move(request));
    const std::size_t maximumSize = bytes.response.isSuccess() ? maximumBodySize : maximumErrorBodySize;
    HTTPData data{.body = {}, .response = std::move(bytes.response)};
    while (data.body.size() < maximumSize) {
        const std::optional<std::string> chunk = co_await bytes.body.next();
        if (!chunk) break;
        data.body.append(*chunk, 0, maximumSize - data.body.size());
    }
    co_return data;
}

Task<HTTPBytes> URLSessionHTTPClient::bytes(HTTPRequest request) {
    auto head = makeStream<HTTPResponse>();
    auto body = makeStream<std::string>();
    session_.post(
        [transfer = std::make_shared<HTTPTransfer>(session_, settings_, std::move(request), std::move(head.second),
                                                   std::move(body.second))] { transfer->start(); });
    std::optional<HTTPResponse> response = co_await head.first.next();
    co_return HTTPBytes{.body = std::move(body.first), .response = std::move(*response)};
}

}  // namespace ovrin
