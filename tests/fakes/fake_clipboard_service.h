// A clipboard in memory.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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

    std::int64_t changeCount() const override { return changes; }
    Task<std::optional<Image>> readImage() override { co_return image; }
    Task<std::optional<std::string>> readString() override { co_return string; }
    Task<std::optional<std::string>> readSelectedText() override { co_return selected; }
    Task<std::vector<ClipboardItem>> readItems() override { co_return items; }

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
