// What was on the clipboard, or selected, when it was borrowed from the user, and the promise to put it back.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/clipboard_service.h"

namespace ovrin {

// Main thread. The clipboard is put back when the snapshot goes, also when the coroutine that holds it is destroyed
// where it waits. A clipboard that nobody has changed meanwhile is left as it is: it would lose the forms that its
// owner could not hand over in time.
//
// Owners convert a picture into every encoding they offer, which takes seconds for a large one. So only one encoding is
// saved, the lossless one before everything else; the others are offered again and made from it when somebody asks.
class PasteboardSnapshot {
public:
    // Takes at most 300 ms; other forms that have not come by then are lost. Throws SelectionError::pictureTooLarge()
    // when a picture has not come in any encoding, and CancellationError; nothing has been touched then.
    static Task<PasteboardSnapshot> take(ClipboardService& pasteboard,
                                         ClipboardSource source = ClipboardSource::clipboard);

    PasteboardSnapshot(PasteboardSnapshot&& other) noexcept;
    PasteboardSnapshot& operator=(PasteboardSnapshot&&) = delete;
    ~PasteboardSnapshot();

    // Leaves on the clipboard what is there now.
    void giveUp() { pasteboard_ = nullptr; }

    // Of the clipboard as it was taken.
    std::int64_t changeCount() const { return changeCount_; }

private:
    PasteboardSnapshot(ClipboardService& pasteboard, ClipboardSource source, std::vector<ClipboardItem> items);

    ClipboardService* pasteboard_;  // none when moved from or given up
    ClipboardSource source_;
    std::vector<ClipboardItem> items_;
    std::int64_t changeCount_;
};

}  // namespace ovrin
