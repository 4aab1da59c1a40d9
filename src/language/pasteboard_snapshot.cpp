#include "language/pasteboard_snapshot.h"

#include <utility>

namespace ovrin {

Task<PasteboardSnapshot> PasteboardSnapshot::take(ClipboardService& pasteboard) {
    std::vector<ClipboardItem> items = co_await pasteboard.readItems();
    co_return PasteboardSnapshot(pasteboard, std::move(items));
}

PasteboardSnapshot::PasteboardSnapshot(ClipboardService& pasteboard, std::vector<ClipboardItem> items)
    : pasteboard_(&pasteboard), items_(std::move(items)), changeCount_(pasteboard.changeCount()) {}

PasteboardSnapshot::PasteboardSnapshot(PasteboardSnapshot&& other) noexcept
    : pasteboard_(std::exchange(other.pasteboard_, nullptr)),
      items_(std::move(other.items_)),
      changeCount_(other.changeCount_) {}

PasteboardSnapshot::~PasteboardSnapshot() {
    if (pasteboard_ != nullptr && pasteboard_->changeCount() != changeCount_) {
        pasteboard_->writeItems(std::move(items_));
    }
}

}  // namespace ovrin
