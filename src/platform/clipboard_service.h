// Seam: the clipboard that all programs of the desktop share, and that other programs may change at any time.
//
// What is on it belongs to another program and may take a while to come, so reading is a task; what the program puts
// there itself is there when the call returns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/image.h"
#include "base/task.h"

namespace ovrin {

// One form in which an item offers its data.
struct ClipboardRepresentation {
    std::string type;  // the type identifier of the platform, e.g. a MIME type
    std::vector<std::byte> data;

    bool operator==(const ClipboardRepresentation&) const = default;
};

// One item in all its forms, the owner's favourite first. Where the platform knows no items, all forms are one item.
using ClipboardItem = std::vector<ClipboardRepresentation>;

// Main thread. Nothing here throws but CancellationError: what cannot be read, or does not come within the time the
// adapter allows its owner, counts as absent.
class ClipboardService {
public:
    virtual ~ClipboardService() = default;

    // Differs after every change of the contents, whoever made it.
    virtual std::int64_t changeCount() const = 0;

    // The picture on the clipboard, in pixels of its own size; none when nothing there is a picture.
    virtual Task<std::optional<Image>> readImage() = 0;

    // The plain text on the clipboard as UTF-8, untrimmed; none when there is none.
    virtual Task<std::optional<std::string>> readString() = 0;

    // The text that the desktop shows as selected, in whatever program, without anything having been copied; none when
    // there is none.
    virtual Task<std::optional<std::string>> readSelectedText() = 0;

    // A copy of everything on the clipboard, to be given to writeItems() later. Forms without data and those that only
    // speak about the others (targets, timestamps) are left out; empty when the clipboard is.
    virtual Task<std::vector<ClipboardItem>> readItems() = 0;

    // Replace all contents: by plain text (UTF-8, may be empty), and by items in their order (none: it ends up empty).
    virtual void writeString(std::string text) = 0;
    virtual void writeItems(std::vector<ClipboardItem> items) = 0;
};

}  // namespace ovrin
