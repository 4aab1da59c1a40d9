// What a display server lets one program do with the clipboard and with what is selected (PRIMARY): take the clipboard
// over and serve its contents to others, and ask the owners of both for theirs.
//
// Used by one thread, which sleeps in pump() until the server says something. While a read waits, requests of others
// are served.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clipboard_service.h"

namespace ovrin {

class SelectionClient {
public:
    using Source = ClipboardSource;
    using Bytes = std::vector<std::byte>;
    static constexpr std::chrono::milliseconds defaultPatience{2000};
    static constexpr std::size_t largestContents = std::size_t{512} << 20U;

    // The clipboard that a client is made for.
    struct User {
        int wakeDescriptor = -1;  // an eventfd that is written when pump() is to return; whoever waits reads it
        // The functions are called on the pumping thread.
        std::function<bool()> isGivenUp{};  // whether the read under way is; the eventfd is written after that happens
        std::function<void(Source)> changedByOthers{};
        std::function<void()> readByOthers{};  // the contents, not only what forms they have
        // Makes the type from the picture on another thread and calls `done` with it, later or at once;
        // without data when it cannot be made. Nothing is called any more when the client has gone.
        std::function<void(std::shared_ptr<const Bytes> picture, std::string type, std::function<void(Bytes)> done)>
            encode{};
    };

    virtual ~SelectionClient() = default;

    // Handles what has arrived, or waits until something arrives or the descriptor is written.
    virtual void pump() = 0;

    // Becomes the owner of one item in the given forms; without any the source ends up empty. Not for what its
    // ClipboardService does not paste from.
    virtual void own(Source source, ClipboardItem item) = 0;

    // Gives the clipboard's contents, if they are our own, to whoever keeps them for the time after us.
    virtual void handOver() = 0;

    // targets() and convert() throw Error, in words for the user, when the owner does not answer or sends without end,
    // and when the server has gone.

    // The forms that the owner offers, without those that only speak about the others; empty when there is none.
    virtual std::vector<std::string> targets(Source source) = 0;
    // The contents in one form; none where the owner has none, or the read is given up, or it would have to be made
    // first from others of our own.
    virtual std::optional<Bytes> convert(std::string_view target, Source source) = 0;
};

// How reads fail.
[[noreturn]] void throwOwnerIsSilent(ClipboardSource source);
[[noreturn]] void throwTooMuch(ClipboardSource source);

// Whether the form speaks about the contents, or about the conversation, and is no contents (ICCCM 2.6.2).
bool isMetaTarget(std::string_view target);

}  // namespace ovrin
