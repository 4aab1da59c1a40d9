#include "model/local_service.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include <arpa/inet.h>

#include "base/text.h"
#include "model/request_url.h"

namespace ovrin {

namespace {

using IPv6 = std::array<std::uint8_t, 16>;

struct IPv4Range {
    std::uint32_t network;
    int prefixLength;
};
constexpr std::array localRanges{
    IPv4Range{0x7F000000, 8},   // 127.0.0.0: loopback
    IPv4Range{0x0A000000, 8},   // 10.0.0.0
    IPv4Range{0xAC100000, 12},  // 172.16.0.0
    IPv4Range{0xC0A80000, 16},  // 192.168.0.0
};

bool isLocal(std::uint32_t address) {
    return std::ranges::any_of(localRanges, [&](const IPv4Range& range) {
        return ((address ^ range.network) >> (32 - range.prefixLength)) == 0;
    });
}

bool isLocal(const IPv6& address) {
    constexpr IPv6 loopback{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    const bool isUniqueLocal = (address[0] & 0xFEU) == 0xFC;
    const bool isLinkLocal = address[0] == 0xFE && (address[1] & 0xC0U) == 0x80;
    return address == loopback || isUniqueLocal || isLinkLocal;
}

bool endsWithLabel(std::string_view name, std::string_view label) {
    return name.size() > label.size() + 1 && name.ends_with(label) && name[name.size() - label.size() - 1] == '.';
}

bool isLocalName(std::string name) {
    if (name.ends_with('.')) name.pop_back();
    return name == "localhost" || endsWithLabel(name, "localhost") || endsWithLabel(name, "local");
}

bool isLocalHost(const std::string& host) {
    std::uint32_t ipv4 = 0;
    if (::inet_pton(AF_INET, host.c_str(), &ipv4) == 1) return isLocal(ntohl(ipv4));
    if (!host.starts_with('[')) return isLocalName(text::asciiLowercased(host));
    IPv6 ipv6{};
    const std::string address = host.substr(1, host.size() - 2);
    return ::inet_pton(AF_INET6, address.c_str(), ipv6.data()) == 1 && isLocal(ipv6);
}

}  // namespace

bool isLocalService(std::string_view connectionURL) {
    const auto url = RequestURL::parse(text::trimmed(connectionURL));
    return url && isLocalHost(url->host());
}

ModelAPIConfiguration withLocalKey(ModelAPIConfiguration configuration) {
    if (!configuration.hasAuthentication() && isLocalService(configuration.connectionURL)) {
        configuration.apiKey = localServiceKey;
    }
    return configuration;
}

}  // namespace ovrin
