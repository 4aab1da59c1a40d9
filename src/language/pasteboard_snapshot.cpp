#include "language/pasteboard_snapshot.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "base/time_limit.h"
#include "language/selection_error.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;
using Forms = std::vector<ClipboardRepresentation*>;

// The user waits for the selection meanwhile.
constexpr auto timeLimit = 300ms;

// Names of pictures that are no MIME types: of the window toolkits, and of X11's conventions.
constexpr std::array pictureNames{"application/x-qt-image", "PIXMAP", "BITMAP"};
constexpr std::array losslessTypes{"image/png", "image/bmp", "image/tiff"};
// Drawings, which say more than the pixels that they are shown as.
constexpr std::array drawingNames{"svg", "emf", "wmf", "eps"};

bool isPicture(const ClipboardRepresentation& form) {
    if (std::ranges::find(pictureNames, form.type) != pictureNames.end()) return true;
    const std::string type = text::asciiLowercased(form.type);
    return type.starts_with("image/") &&
           std::ranges::none_of(drawingNames, [&](const char* name) { return type.find(name) != std::string::npos; });
}

// All encodings of the item's picture, the one to be saved first.
Forms picturesOf(ClipboardItem& item) {
    Forms pictures;
    for (ClipboardRepresentation& form : item) {
        if (isPicture(form)) pictures.push_back(&form);
    }
    std::ranges::stable_sort(pictures, {}, [](const ClipboardRepresentation* form) {
        return std::ranges::find(losslessTypes, form->type) - losslessTypes.begin();
    });
    return pictures;
}

Forms othersOf(ClipboardItem& item) {
    Forms others;
    for (ClipboardRepresentation& form : item) {
        if (!isPicture(form)) others.push_back(&form);
    }
    return others;
}

// As they are offered, without data.
std::vector<ClipboardItem> itemsOfTypes(std::vector<std::vector<std::string>> types) {
    std::vector<ClipboardItem> items;
    for (std::vector<std::string>& ofItem : types) {
        ClipboardItem& item = items.emplace_back();
        for (std::string& type : ofItem) item.push_back({.type = std::move(type)});
    }
    return items;
}

Task<void> save(ClipboardService& pasteboard, ClipboardSource source, std::size_t item, ClipboardRepresentation& form) {
    form.data = co_await pasteboard.readForm(item, form.type, source);
}

// The items belong to whoever awaits this, and keep what has come when it is given up.
Task<void> gather(ClipboardService& pasteboard, ClipboardSource source, std::vector<ClipboardItem>& items) {
    std::vector<std::vector<std::string>> types = co_await pasteboard.readTypes(source);
    items = itemsOfTypes(std::move(types));
    for (std::size_t i = 0; i < items.size(); ++i) {
        // Owners promise encodings that they do not have.
        for (ClipboardRepresentation* const picture : picturesOf(items[i])) {
            co_await save(pasteboard, source, i, *picture);
            if (!picture->data.empty()) break;
        }
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        for (ClipboardRepresentation* const form : othersOf(items[i])) co_await save(pasteboard, source, i, *form);
    }
}

ClipboardRepresentation* savedPicture(ClipboardItem& item) {
    const Forms pictures = picturesOf(item);
    const auto saved = std::ranges::find_if(pictures, [](const auto* form) { return !form->data.empty(); });
    return saved == pictures.end() ? nullptr : *saved;
}

bool lacksItsPicture(ClipboardItem& item) {
    return !picturesOf(item).empty() && savedPicture(item) == nullptr;
}

// What was not saved is made from what was, or left out.
void complete(ClipboardItem& item) {
    if (const ClipboardRepresentation* const saved = savedPicture(item)) {
        for (ClipboardRepresentation* const picture : picturesOf(item)) {
            if (picture != saved) picture->encodedFrom = saved->type;
        }
    }
    std::erase_if(item, [](const auto& form) { return form.data.empty() && form.encodedFrom.empty(); });
}

}  // namespace

Task<PasteboardSnapshot> PasteboardSnapshot::take(ClipboardService& pasteboard, ClipboardSource source) {
    std::vector<ClipboardItem> items;
    const bool isComplete = co_await runWithin(timeLimit, gather(pasteboard, source, items));
    if (!isComplete && std::ranges::any_of(items, lacksItsPicture)) throw SelectionError::pictureTooLarge();
    std::ranges::for_each(items, complete);
    std::erase_if(items, [](const ClipboardItem& item) { return item.empty(); });
    co_return PasteboardSnapshot(pasteboard, source, std::move(items));
}

PasteboardSnapshot::PasteboardSnapshot(ClipboardService& pasteboard, ClipboardSource source,
                                       std::vector<ClipboardItem> items)
    : pasteboard_(&pasteboard),
      source_(source),
      items_(std::move(items)),
      changeCount_(pasteboard.changeCount(source)) {}

PasteboardSnapshot::PasteboardSnapshot(PasteboardSnapshot&& other) noexcept
    : pasteboard_(std::exchange(other.pasteboard_, nullptr)),
      source_(other.source_),
      items_(std::move(other.items_)),
      changeCount_(other.changeCount_) {}

PasteboardSnapshot::~PasteboardSnapshot() {
    if (pasteboard_ != nullptr && pasteboard_->changeCount(source_) != changeCount_) {
        pasteboard_->writeItems(std::move(items_), source_);
    }
}

}  // namespace ovrin
