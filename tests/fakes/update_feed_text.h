// The text of feeds of updates, right unless a test changes a value.
#pragma once

#include <string>
#include <string_view>

namespace ovrin {

struct FeedItem {
    std::string version = "9.0";
    std::string build = "1";
    std::string distribution = "debian";
    std::string release = "12";
    std::string architecture = "amd64";
    std::string url = "https://example.com/ovrin.deb";
    std::string length = "3";
    std::string signature = "c2lnbmF0dXJl";
    std::string notes{};
};

inline std::string escapedXML(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '<') {
            result += "&lt;";
        } else if (character == '&') {
            result += "&amp;";
        } else {
            result += character;
        }
    }
    return result;
}

inline std::string feedItem(const FeedItem& item) {
    std::string text =
        "<item><title>Ovrin</title><link>https://example.com/page</link>"
        "<pubDate>Tue, 24 Nov 2026 10:00:00 +0000</pubDate><enclosure type='x' url='" +
        escapedXML(item.url) + "' length='" + item.length + "'/>";
    const auto add = [&text](const char* name, const std::string& value) {
        text.append("<o:").append(name).append(">").append(escapedXML(value)).append("</o:").append(name).append(">");
    };
    add("version", item.version);
    add("build", item.build);
    add("distribution", item.distribution);
    add("release", item.release);
    add("architecture", item.architecture);
    add("signature", item.signature);
    add("notes", item.notes);
    return text + "</item>\n";
}

inline std::string feedDocument(std::string_view items) {
    return "<rss version='2.0' xmlns:o='com.quel.ovrin:updates'><channel><title>Ovrin</title>" + std::string(items) +
           "</channel></rss>";
}

}  // namespace ovrin
