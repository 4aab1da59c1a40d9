// The clipboard of an X11 desktop. A thread of its own serves what the program has put there and asks other programs
// for what they have, so that an owner that hangs, or a picture of 200 MB, never stops the main loop.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "platform/clipboard_service.h"
#include "platform/image_decoder.h"
#include "platform/linux/x11/x11_selection.h"

namespace ovrin {

class WorkerExecutor;

class X11Clipboard final : public ClipboardService {
public:
    // display: such as ":0"; null for the one the environment names. patience: how long an owner may let each piece
    // wait. Decoder and workers (where pictures are decoded) outlive the object. Throws Error when there is no X server
    // with XFixes.
    X11Clipboard(const char* display, const ImageDecoder& decoder, WorkerExecutor& workers,
                 std::chrono::milliseconds patience = X11Selection::defaultPatience);
    X11Clipboard(const X11Clipboard&) = delete;
    X11Clipboard& operator=(const X11Clipboard&) = delete;
    // Finishes what was written and leaves the contents to the desktop's clipboard manager where there is one. Reads
    // that wait are given up.
    ~X11Clipboard() override;

    std::int64_t changeCount() const override { return changes_.load(); }

    // A picture, or the file of a picture that was copied in a file manager.
    Task<std::optional<Image>> readImage() override;
    Task<std::optional<std::string>> readString() override;
    Task<std::optional<std::string>> readSelectedText() override;
    Task<std::vector<ClipboardItem>> readItems() override;

    void writeString(std::string text) override;
    void writeItems(std::vector<ClipboardItem> items) override;

private:
    using Job = std::function<void(X11Selection&)>;
    struct WakeDescriptor {
        WakeDescriptor();
        ~WakeDescriptor();
        WakeDescriptor(const WakeDescriptor&) = delete;
        WakeDescriptor& operator=(const WakeDescriptor&) = delete;
        int value;
    };

    void post(Job job);
    template <typename Result>
    Task<Result> ask(std::function<Result(X11Selection&)> question);
    void run();
    std::optional<Job> nextJob();

    const ImageDecoder& decoder_;
    WorkerExecutor& workers_;
    std::atomic<std::int64_t> changes_ = 0;
    WakeDescriptor wake_;
    std::stop_source closing_;
    X11Selection selection_;  // the thread's
    bool isOver_ = false;     // the thread's
    std::mutex mutex_;
    std::deque<Job> jobs_;  // guarded by the mutex
    std::thread thread_;    // the last member: it uses the others
};

}  // namespace ovrin
