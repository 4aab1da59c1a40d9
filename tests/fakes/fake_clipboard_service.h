// A clipboard in memory.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/suspension.h"
#include "fakes/journal.h"
#include "platform/clipboard_service.h"

namespace ovrin {

class FakeClipboardService final : public ClipboardService {
    using Source = ClipboardSource;

public:
    explicit FakeClipboardService(Journal& journal) : journal_(journal) {}

    std::optional<Image> image;
    std::optional<std::string> string;
    std::optional<std::string> selected;
    std::vector<ClipboardItem> items;
    std::vector<ClipboardItem> selectedItems;
    std::int64_t changes = 0;
    std::int64_t selectedChanges = 0;
    std::int64_t reads = 0;
    std::vector<ClipboardSource> pasted{ClipboardSource::clipboard};
    std::map<std::string, EventLoop::Duration> delays;  // how long the owner takes for a type
    std::vector<std::string> read;                      // the types that were asked for, in order

    std::optional<Error> failure;  // of every read of a text or a picture
    std::optional<std::string> absence;

    std::optional<std::string> problem() const override { return absence; }
    std::int64_t changeCount(Source source = Source::clipboard) const override {
        return source == Source::primary ? selectedChanges : changes;
    }
    std::int64_t readCount() const override { return reads; }
    std::vector<ClipboardSource> pastedSources() const override { return pasted; }
    Task<std::optional<Image>> readImage() override {
        if (failure) throw Error(*failure);
        co_return image;
    }
    Task<std::optional<std::string>> readString(Source source = Source::clipboard) override {
        if (failure) throw Error(*failure);
        co_return source == Source::primary ? selected : string;
    }
    Task<std::vector<std::vector<std::string>>> readTypes(Source source = Source::clipboard) override {
        std::vector<std::vector<std::string>> types;
        for (const ClipboardItem& item : itemsOf(source)) {
            std::vector<std::string>& ofItem = types.emplace_back();
            for (const ClipboardRepresentation& form : item) ofItem.push_back(form.type);
        }
        co_return types;
    }
    Task<std::vector<std::byte>> readForm(std::size_t item, std::string type,
                                          Source source = Source::clipboard) override {
        read.push_back(type);
        const auto delay = delays.find(type);
        if (delay != delays.end()) co_await sleepFor(delay->second);
        for (const ClipboardRepresentation& form : itemsOf(source).at(item)) {
            if (form.type == type) co_return form.data;
        }
        co_return std::vector<std::byte>{};
    }

    void writeString(std::string text, Source source = Source::clipboard) override {
        journal_.add(nameOf(source) + text);
        if (source == Source::primary) {
            ++selectedChanges;
            selectedItems.clear();
            selected = std::move(text);
            return;
        }
        ++changes;
        image.reset();
        items.clear();
        string = std::move(text);
    }
    void writeItems(std::vector<ClipboardItem> newItems, Source source = Source::clipboard) override {
        journal_.add(nameOf(source) + std::to_string(newItems.size()) + " items");
        if (source == Source::primary) {
            ++selectedChanges;
            selected.reset();
            selectedItems = std::move(newItems);
            return;
        }
        ++changes;
        image.reset();
        string.reset();
        items = std::move(newItems);
    }

private:
    static std::string nameOf(Source source) { return source == Source::primary ? "selection: " : "clipboard: "; }
    std::vector<ClipboardItem>& itemsOf(Source source) { return source == Source::primary ? selectedItems : items; }

    Journal& journal_;
};

}  // namespace ovrin
