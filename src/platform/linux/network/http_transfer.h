// One request on its way: from the curl handle that carries it to the two streams that its caller reads.
//
// Lives on the thread of the network loop. Ends by itself when the response has ended, failed or fallen silent, and
// within milliseconds when the body's stream is dropped, wherever that happens.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include <curl/curl.h>

#include "base/async_stream.h"
#include "base/error.h"
#include "platform/http_client.h"
#include "platform/linux/network/network_loop.h"

namespace ovrin {

class HTTPTransfer final : public NetworkLoop::Transfer, public std::enable_shared_from_this<HTTPTransfer> {
public:
    // What all requests of a client have in common.
    struct Settings {
        std::string userAgent;
        std::string caFile;  // PEM file of the authorities to trust; empty: those of the system
    };

    // head gets the response when its headers are complete (one value), body the chunks after it. A failure goes to
    // head when it comes first, else to body.
    HTTPTransfer(NetworkLoop& loop, Settings settings, HTTPRequest request, StreamWriter<HTTPResponse> head,
                 StreamWriter<std::string> body);
    HTTPTransfer(const HTTPTransfer&) = delete;
    HTTPTransfer& operator=(const HTTPTransfer&) = delete;
    ~HTTPTransfer() override;

    void start();
    void didEnd(CURLcode result) override;

private:
    struct HandleDeleter {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    struct ListDeleter {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static std::size_t didReceiveHeader(const char* data, std::size_t size, std::size_t count, void* transfer);
    static std::size_t didReceiveBody(const char* data, std::size_t size, std::size_t count, void* transfer);
    static int didProgress(void* transfer, curl_off_t total, curl_off_t received, curl_off_t toSend, curl_off_t sent);

    template <typename Value>
    void set(CURLoption option, Value value);
    void prepareHandle();
    void prepareConnection();
    void prepareMethodAndBody();
    void prepareHeaders();
    void addHeader(const std::string& line);

    void handleHeaderLine(std::string_view line);
    void handleEndOfHeaders();
    std::optional<std::string> redirectTarget() const;
    void followRedirect();
    void deliverHead(HTTPResponse response);

    void handleDrop();
    void expectActivity(EventLoop::Duration delay);
    void handleSilence();
    void stopWatching();
    void fail(const Error& error);

    NetworkLoop& loop_;
    const Settings settings_;
    const HTTPRequest request_;
    StreamWriter<HTTPResponse> head_;
    StreamWriter<std::string> body_;

    std::string url_;
    std::string host_;
    // The list before the handle: curl reads it until the handle is gone.
    std::unique_ptr<curl_slist, ListDeleter> headers_;
    std::unique_ptr<CURL, HandleDeleter> handle_;

    HTTPResponse response_;  // as far as its headers have arrived
    std::size_t headerSize_ = 0;
    bool isHeadDelivered_ = false;
    std::optional<std::string> redirectTarget_;
    int redirectCount_ = 0;
    std::size_t discardedBody_ = 0;  // bytes of the body of a redirect

    EventLoop::TimePoint lastActivity_;
    curl_off_t progress_ = 0;                  // bytes moved in either direction
    std::optional<EventLoop::TimerId> timer_;  // for silence; after a drop, for the end
    std::optional<std::stop_callback<std::function<void()>>> onDropped_;
};

}  // namespace ovrin
