#include "updates/update_feed.h"

#include <array>
#include <charconv>
#include <exception>
#include <memory>
#include <utility>

#include <curl/curl.h>
#include <expat.h>

#include "base/error.h"
#include "base/text.h"
#include "model/request_url.h"
#include "updates/debian_version.h"
#include "updates/update_configuration.h"

namespace ovrin {

namespace {

constexpr char separator = '\n';  // between a namespace and a name; in no name
constexpr std::string_view ownNamespace = "com.quel.ovrin:updates\n";

// Where the elements stand that are read.
enum Depth { rssDepth = 1, channelDepth = 2, itemDepth = 3, fieldDepth = 4 };

// What an item holds, as it stands in the document.
struct RawItem {
    std::string version, build, distribution, release, architecture, signature, notes;  // elements of our namespace
    std::string link, pubDate;
    std::string enclosureURL, enclosureLength;
    bool isOurs = false;
};

struct Field {
    std::string_view name;  // in our namespace
    std::string RawItem::*value;
};
constexpr std::array<Field, 7> ownFields{{{"version", &RawItem::version},
                                          {"build", &RawItem::build},
                                          {"distribution", &RawItem::distribution},
                                          {"release", &RawItem::release},
                                          {"architecture", &RawItem::architecture},
                                          {"signature", &RawItem::signature},
                                          {"notes", &RawItem::notes}}};

Error wrongFeed(const std::string& what) {
    return Error("更新源的内容有误：" + what + "。");
}

bool isHTTPS(std::string_view url) {
    return text::asciiLowercased(url.substr(0, url.find(':'))) == "https" && RequestURL::parse(url);
}

std::uint64_t packageSize(std::string_view text, const std::string& where) {
    std::uint64_t size = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), size);
    if (failure != std::errc() || end != text.data() + text.size() || size == 0 || size > maximumUpdatePackageSize) {
        throw wrongFeed(where + "的安装包大小无效");
    }
    return size;
}

// RSS writes dates as mails do. What the clock cannot count is none.
std::optional<Timestamp> date(const std::string& text) {
    const std::time_t seconds = curl_getdate(text.c_str(), nullptr);
    constexpr std::time_t endOfTheYear2200 = 7'289'654'399;
    if (seconds < 0 || seconds > endOfTheYear2200) return std::nullopt;
    return std::chrono::system_clock::from_time_t(seconds);
}

UpdateItem checked(RawItem raw, std::size_t number) {
    const std::string where = "第 " + std::to_string(number) + " 条";
    for (const auto& [name, value] : ownFields) {
        std::string& text = raw.*value;
        text = std::string(text::trimmed(text));
        const bool isRequired = name != "build" && name != "notes";
        if (isRequired && text.empty()) throw wrongFeed(where + "缺少 " + std::string(name));
    }
    if (!isDebianVersion(packageVersion(raw.version, raw.build))) throw wrongFeed(where + "的版本号无效");
    if (!isHTTPS(raw.enclosureURL)) throw wrongFeed(where + "缺少 https 下载地址");
    const std::string page(text::trimmed(raw.link));
    return {.version = std::move(raw.version),
            .build = std::move(raw.build),
            .target = {.distribution = std::move(raw.distribution),
                       .release = std::move(raw.release),
                       .architecture = std::move(raw.architecture)},
            .packageURL = std::move(raw.enclosureURL),
            .packageSize = packageSize(text::trimmed(raw.enclosureLength), where),
            .signature = std::move(raw.signature),
            .notes = std::move(raw.notes),
            .page = isHTTPS(page) ? page : "",
            .date = date(raw.pubDate)};
}

// Reads one document. Expat is written in C: what a handler throws must not pass through it, and is kept until it has
// returned.
class FeedReader {
public:
    FeedReader() : parser_(XML_ParserCreateNS(nullptr, separator), XML_ParserFree) {
        if (!parser_) throw std::bad_alloc();
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), &didStart, &didEnd);
        XML_SetCharacterDataHandler(parser_.get(), &didReadText);
        XML_SetStartDoctypeDeclHandler(parser_.get(), &didStartDoctype);
    }

    std::vector<UpdateItem> read(std::string_view document) {
        const auto status = XML_Parse(parser_.get(), document.data(), static_cast<int>(document.size()), XML_TRUE);
        if (failure_) std::rethrow_exception(failure_);
        if (status != XML_STATUS_OK) throw Error("更新源不是有效的 XML 文档。");
        return std::move(items_);
    }

private:
    template <typename Step>
    static void guarded(void* reader, Step step) {
        auto& self = *static_cast<FeedReader*>(reader);
        if (self.failure_) return;
        try {
            step(self);
        } catch (...) {
            self.failure_ = std::current_exception();
            XML_StopParser(self.parser_.get(), XML_FALSE);
        }
    }

    static void didStart(void* reader, const XML_Char* name, const XML_Char** attributes) {
        guarded(reader, [&](FeedReader& self) { self.start(name, attributes); });
    }
    static void didEnd(void* reader, const XML_Char* /*name*/) {
        guarded(reader, [](FeedReader& self) { self.end(); });
    }
    static void didReadText(void* reader, const XML_Char* text, int length) {
        guarded(reader, [&](FeedReader& self) {
            const bool isInField = self.field_ != nullptr && self.depth_ == fieldDepth;
            if (isInField) self.field_->append(text, static_cast<std::size_t>(length));
        });
    }
    static void didStartDoctype(void* reader, const XML_Char* /*name*/, const XML_Char* /*system*/,
                                const XML_Char* /*public*/, int /*hasInternalSubset*/) {
        guarded(reader, [](FeedReader&) { throw wrongFeed("不允许 DOCTYPE"); });
    }

    void start(std::string_view name, const XML_Char** attributes) {
        ++depth_;
        if (depth_ == rssDepth && name != "rss") throw wrongFeed("不是 RSS 文档");
        if (depth_ == channelDepth) isInChannel_ = name == "channel";
        if (depth_ == itemDepth && isInChannel_ && name == "item") {
            if (++itemCount_ > maximumUpdateFeedItems) {
                throw wrongFeed("超过 " + std::to_string(maximumUpdateFeedItems) + " 条");
            }
            item_.emplace();
        }
        if (depth_ == fieldDepth && item_) startField(name, attributes);
    }

    void startField(std::string_view name, const XML_Char** attributes) {
        if (name == "enclosure") return readEnclosure(attributes);
        if (name.starts_with(ownNamespace)) {
            item_->isOurs = true;
            for (const auto& [known, value] : ownFields) {
                if (name.substr(ownNamespace.size()) == known) field_ = &(*item_.*value);
            }
        }
        if (name == "link") field_ = &item_->link;
        if (name == "pubDate") field_ = &item_->pubDate;
        if (field_ != nullptr) field_->clear();
    }

    void readEnclosure(const XML_Char** attributes) {
        for (; attributes[0] != nullptr; attributes += 2) {
            const std::string_view name = attributes[0];
            if (name == "url") item_->enclosureURL = attributes[1];
            if (name == "length") item_->enclosureLength = attributes[1];
        }
    }

    void end() {
        if (depth_ == fieldDepth) field_ = nullptr;
        if (depth_ == itemDepth && item_) {
            if (item_->isOurs) items_.push_back(checked(std::move(*item_), itemCount_));
            item_.reset();
        }
        --depth_;
    }

    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    std::exception_ptr failure_;
    std::vector<UpdateItem> items_;
    std::optional<RawItem> item_;   // the one that is being read
    std::string* field_ = nullptr;  // of the item, in which text is being read
    std::size_t itemCount_ = 0;
    int depth_ = 0;
    bool isInChannel_ = false;
};

}  // namespace

std::string UpdateItem::packageVersion() const {
    return ovrin::packageVersion(version, build);
}

std::vector<UpdateItem> parseUpdateFeed(std::string_view document) {
    if (document.size() > maximumUpdateFeedSize) throw Error("更新源过大（超过 1 MB）。");
    return FeedReader().read(document);
}

}  // namespace ovrin
