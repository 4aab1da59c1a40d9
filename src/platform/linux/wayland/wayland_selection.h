// The clipboard of a Wayland compositor, and what is selected (PRIMARY), as one client without windows sees them: takes
// them over and serves their contents to others through pipes, and asks their owners for them.
//
// SIGPIPE must be ignored in the process: readers go away when they have enough.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/desktop/selection_client.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"

namespace ovrin {

class WaylandSelection final : public SelectionClient {
public:
    // How long an owner may let each piece wait, and how much it may send.
    struct Limits {
        std::chrono::milliseconds patience = defaultPatience;
        std::chrono::milliseconds longest{30'000};
        std::size_t largest = largestContents;
    };

    // name: of the compositor's socket; null for the one the environment names. Throws Error when no compositor
    // answers, or it lets no program look at the clipboard.
    WaylandSelection(const char* name, User user, Limits limits);

    void pump() override;
    void own(Source source, ClipboardItem item) override;
    // A clipboard manager reads what is new as soon as it hears of it: it gets the time for that.
    void handOver() override;
    std::vector<std::string> targets(Source source) override;
    std::optional<Bytes> convert(std::string_view target, Source source) override;

private:
    using Clock = WaylandConnection::Clock;
    struct OwnContents {
        std::shared_ptr<const ClipboardItem> item;
        WaylandDataSource source;
        Clock::time_point since;
    };
    // The clipboard or PRIMARY, as far as it is ours.
    struct Holding {
        WaylandSelection* client = nullptr;
        std::optional<OwnContents> own{};
        bool isClearing = false;  // by ourselves, which is no change by others
    };
    class Descriptor {
    public:
        explicit Descriptor(int value) : value_(value) {}
        ~Descriptor();
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;
        int value() const { return value_; }

    private:
        int value_;
    };
    // Contents on their way to somebody.
    struct Transfer {
        std::shared_ptr<const Bytes> data;
        std::span<const std::byte> rest;
        std::shared_ptr<const Descriptor> pipe;
    };

    void handleChange(Source source);
    Holding& holding(Source source) { return source == Source::primary ? primary_ : clipboard_; }
    void serve(const Holding& holding, std::string_view type, int pipe);
    void beginTransfer(std::shared_ptr<const Bytes> data, std::shared_ptr<const Descriptor> pipe);
    std::optional<Bytes> readToEnd(Source source, int pipe);
    void waitOnce(std::optional<Clock::time_point> deadline, int readable = -1);
    void doWithCompositor(const std::function<void()>& work);
    void throwIfLost() const;

    WaylandConnection connection_;
    User user_;
    Limits limits_;
    bool isLost_ = false;
    Holding clipboard_{.client = this};
    Holding primary_{.client = this};
    std::vector<Transfer> transfers_;
    std::unique_ptr<WaylandDataDevice> device_;
};

}  // namespace ovrin
