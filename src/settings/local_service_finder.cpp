#include "settings/local_service_finder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <map>
#include <sstream>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "base/text.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

// What answers on this machine does so at once.
constexpr auto patience = 300ms;

constexpr std::uint16_t ollamaPort = 11434;
constexpr std::array<std::uint16_t, 4> usualPorts{ollamaPort, 1234, 8080, 8000};

struct Owner {
    std::string_view owner;  // of its models, as its list says
    std::string_view name;
};
constexpr std::array owners{Owner{"library", "Ollama"}, Owner{"organization_owner", "LM Studio"},
                            Owner{"llamacpp", "llama.cpp"}, Owner{"vllm", "vLLM"}};

std::string address(std::uint16_t port) {
    return "127.0.0.1:" + std::to_string(port);
}

// A list without models has no owner; of the four only Ollama starts without one.
std::string nameOf(const ModelList& list, std::uint16_t port) {
    if (list.names.empty() && port == ollamaPort) return "Ollama";
    const auto owner = std::ranges::find(owners, list.owner.value_or(""), &Owner::owner);
    return owner == owners.end() ? address(port) : std::string(owner->name);
}

HTTPRequest question(const std::string& connectionURL) {
    HTTPRequest request;
    request.url = connectionURL + "/models";
    request.redirects = HTTPRedirects::none;
    request.proxies = HTTPProxies::none;
    request.timeout = patience;
    return request;
}

}  // namespace

LocalServiceFinder::Ports LocalServiceFinder::ports(const Environment& environment) {
    const std::optional<std::string> named = environment.value("OVRIN_LOCAL_PORTS");
    if (!named) return {usualPorts.begin(), usualPorts.end()};
    Ports ports;
    std::istringstream list(*named);
    for (std::string entry; std::getline(list, entry, ',');) {
        const std::string_view digits = text::trimmed(entry);
        std::uint16_t port = 0;
        const auto read = std::from_chars(digits.begin(), digits.end(), port);
        if (read.ec == std::errc() && read.ptr == digits.end() && port != 0) ports.push_back(port);
    }
    return ports;
}

LocalServiceFinder::LocalServiceFinder(EventLoop& loop, EventLoop& ioLoop, HTTPClientProtocol& http, Ports ports)
    : loop_(loop), ioLoop_(ioLoop), http_(http), ports_(std::move(ports)), questions_(loop) {}

LocalServiceFinder::~LocalServiceFinder() {
    stop();
}

void LocalServiceFinder::look() {
    stop();
    answers_.assign(ports_.size(), std::nullopt);
    waiting_ = static_cast<int>(ports_.size());
    deadline_ = loop_.postAfter(patience, [this] { finish(); });
    for (std::size_t index = 0; index < ports_.size(); ++index) questions_.start(ask(index));
}

void LocalServiceFinder::stop() {
    questions_.cancelAll();
    if (deadline_) loop_.cancelTimer(*std::exchange(deadline_, std::nullopt));
}

// Whatever does not answer as a model service does is none.
Task<void> LocalServiceFinder::ask(std::size_t index) {
    const std::uint16_t port = ports_.at(index);
    std::string connectionURL = "http://" + address(port) + "/v1";
    try {
        ModelList list = co_await fetchModelList(ioLoop_, http_, question(connectionURL));
        std::string name = nameOf(list, port);
        answers_.at(index) = LocalService{
            .name = std::move(name), .connectionURL = std::move(connectionURL), .models = std::move(list.names)};
    } catch (const Error&) {
        answers_.at(index).reset();
    }
    if (--waiting_ > 0) co_return;
    loop_.cancelTimer(*deadline_);
    deadline_ = loop_.postAfter(0ms, [this] { finish(); });  // not while this task is on its way
}

void LocalServiceFinder::finish() {
    stop();
    std::map<std::string, int> bearers;
    for (const std::optional<LocalService>& answer : answers_) {
        if (answer) ++bearers[answer->name];
    }
    std::vector<LocalService> services;
    for (std::size_t index = 0; index < answers_.size(); ++index) {
        if (!answers_[index]) continue;
        LocalService& service = services.emplace_back(*std::move(answers_[index]));
        if (bearers[service.name] > 1) service.name += "（" + std::to_string(ports_[index]) + "）";
    }
    found_.set(std::move(services));
}

}  // namespace ovrin
