// Seam: the clipboard that all programs of the desktop share, and that other programs may change at any time; beside it
// what is selected, which every program may read as if it had been copied.
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
    std::vector<std::byte> data{};
    // Where it is not empty: the type of the item's form, a picture, that this one is made from when somebody asks for
    // it. There is no data then.
    std::string encodedFrom{};

    bool operator==(const ClipboardRepresentation&) const = default;
};

// One item in all its forms, the owner's favourite first. Where the platform knows no items, all forms are one item.
using ClipboardItem = std::vector<ClipboardRepresentation>;

enum class ClipboardSource : std::uint8_t {
    clipboard,
    primary  // what is selected, in whatever program, without anything having been copied
};

// Main thread. Contents that are not there, or not to be had in that form, count as absent.
class ClipboardService {
public:
    virtual ~ClipboardService() = default;

    // Why the session has no clipboard for the program, as a sentence for the user; none where it has. Without one what
    // is written is lost.
    virtual std::optional<std::string> problem() const { return std::nullopt; }

    // A number that every change of the contents makes another one, whoever made the change.
    virtual std::int64_t changeCount(ClipboardSource source = ClipboardSource::clipboard) const = 0;

    // Grows whenever another program takes what this program has put on the clipboard, or selected; clipboard managers
    // do so too.
    virtual std::int64_t readCount() const = 0;

    // Where programs look for what the keys of paste are to put in, the clipboard first. Some take what is selected.
    virtual std::vector<ClipboardSource> pastedSources() const = 0;

    // Reading text and pictures throws Error, in words for the user, when the owner promises some and does not answer
    // or sends without end, when the desktop has gone, and where there is no clipboard.

    // The picture on the clipboard, in pixels of its own size; none when nothing there is a picture.
    virtual Task<std::optional<Image>> readImage() = 0;

    // The plain text there as UTF-8, untrimmed; none when there is none.
    virtual Task<std::optional<std::string>> readString(ClipboardSource source = ClipboardSource::clipboard) = 0;

    // The types of all forms in which every item offers its data, without those that only speak about the others
    // (targets, timestamps); empty when there are none.
    virtual Task<std::vector<std::vector<std::string>>> readTypes(
        ClipboardSource source = ClipboardSource::clipboard) = 0;

    // The data of one form of the item of that number, from 0 on; empty when its owner has none, which it may have
    // promised all the same.
    // A read that is cancelled keeps no later one waiting.
    virtual Task<std::vector<std::byte>> readForm(std::size_t item, std::string type,
                                                  ClipboardSource source = ClipboardSource::clipboard) = 0;

    // Replace all contents: by plain text (UTF-8, may be empty), and by items in their order (none: it ends up empty).
    // Of forms that are made from others, those that the adapter cannot make are not offered. The source is one of
    // pastedSources().
    virtual void writeString(std::string text, ClipboardSource source = ClipboardSource::clipboard) = 0;
    virtual void writeItems(std::vector<ClipboardItem> items, ClipboardSource source = ClipboardSource::clipboard) = 0;
};

}  // namespace ovrin
