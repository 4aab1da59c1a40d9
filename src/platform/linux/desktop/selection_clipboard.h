// The clipboard over a display server's selections. A thread of its own serves what the program has put there and asks
// other programs for what they have, so that an owner that hangs, or a picture of 200 MB, never stops the main loop.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "platform/clipboard_service.h"
#include "platform/image_decoder.h"
#include "platform/linux/desktop/selection_client.h"

namespace ovrin {

class WorkerExecutor;

class SelectionClipboard : public ClipboardService {
public:
    // Connects to the display server; throws Error when there is none.
    using Connect = std::function<std::unique_ptr<SelectionClient>(SelectionClient::User)>;

    // Decoder and workers (where pictures are decoded) outlive the object. Throws what `connect` does.
    SelectionClipboard(const Connect& connect, const ImageDecoder& decoder, WorkerExecutor& workers);
    SelectionClipboard(const SelectionClipboard&) = delete;
    SelectionClipboard& operator=(const SelectionClipboard&) = delete;
    // Finishes what was written and leaves the contents to the desktop's clipboard manager where there is one. Reads
    // that wait are given up.
    ~SelectionClipboard() override;

    std::int64_t changeCount() const override { return changes_.load(); }

    // A picture, or the file of a picture that was copied in a file manager.
    Task<std::optional<Image>> readImage() override;
    Task<std::optional<std::string>> readString() override;
    Task<std::optional<std::string>> readSelectedText() override;
    Task<std::vector<ClipboardItem>> readItems() override;

    void writeString(std::string text) override;
    void writeItems(std::vector<ClipboardItem> items) override;

private:
    using Job = std::function<void(SelectionClient&)>;
    struct WakeDescriptor {
        WakeDescriptor();
        ~WakeDescriptor();
        WakeDescriptor(const WakeDescriptor&) = delete;
        WakeDescriptor& operator=(const WakeDescriptor&) = delete;
        int value;
    };

    void post(Job job);
    template <typename Result>
    Task<Result> ask(std::function<Result(SelectionClient&)> question);
    void run();
    std::optional<Job> nextJob();

    const ImageDecoder& decoder_;
    WorkerExecutor& workers_;
    std::atomic<std::int64_t> changes_ = 0;
    WakeDescriptor wake_;
    std::stop_source closing_;
    std::unique_ptr<SelectionClient> selection_;  // the thread's
    bool isOver_ = false;                         // the thread's
    std::mutex mutex_;
    std::deque<Job> jobs_;  // guarded by the mutex
    std::thread thread_;    // the last member: it uses the others
};

}  // namespace ovrin
