// A clipboard in memory.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/suspension.h"
#include "fakes/journal.h"
#include "platform/clipboard_service.h"

namespace ovrin {

class FakeClipboardService final : public ClipboardService {
public:
    explicit FakeClipboardService(Journal& journal) : journal_(journal) {}

    std::optional<Image> image;
    std::optional<std::string> string;
    std::optional<std::string> selected;
    std::vector<ClipboardItem> items;
    std::int64_t changes = 0;
    std::map<std::string, EventLoop::Duration> delays;  // how long the owner takes for a type
    std::vector<std::string> read;                      // the types that were asked for, in order

    std::int64_t changeCount() const override { return changes; }
    Task<std::optional<Image>> readImage() override { co_return image; }
    Task<std::optional<std::string>> readString() override { co_return string; }
    Task<std::optional<std::string>> readSelectedText() override { co_return selected; }
    Task<std::vector<std::vector<std::string>>> readTypes() override {
        std::vector<std::vector<std::string>> types;
        for (const ClipboardItem& item : items) {
            std::vector<std::string>& ofItem = types.emplace_back();
            for (const ClipboardRepresentation& form : item) ofItem.push_back(form.type);
        }
        co_return types;
    }
    Task<std::vector<std::byte>> readForm(std::size_t item, std::string type) override {
        read.push_back(type);
        const auto delay = delays.find(type);
        if (delay != delays.end()) co_await sleepFor(delay->second);
        for (const ClipboardRepresentation& form : items.at(item)) {
            if (form.type == type) co_return form.data;
        }
        co_return std::vector<std::byte>{};
    }

    void writeString(std::string text) override {
        journal_.add("clipboard: " + text);
        ++changes;
        image.reset();
        items.clear();
        string = std::move(text);
    }
    void writeItems(std::vector<ClipboardItem> newItems) override {
        journal_.add("clipboard: " + std::to_string(newItems.size()) + " items");
        ++changes;
        image.reset();
        string.reset();
        items = std::move(newItems);
    }

private:
    Journal& journal_;
};

}  // namespace ovrin
