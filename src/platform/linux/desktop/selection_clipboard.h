// The clipboard over a display server's selections. A thread of its own serves what the program has put there and asks
// other programs for what they have, so that an owner that hangs, or a picture of 200 MB, never stops the main loop.
#pragma once

#include <atomic>
#include <cstddef>
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
#include "platform/image_encoder.h"
#include "platform/linux/desktop/selection_client.h"

namespace ovrin {

class WorkerExecutor;

class SelectionClipboard : public ClipboardService {
public:
    // Connects to the display server; throws Error when there is none.
    using Connect = std::function<std::unique_ptr<SelectionClient>(SelectionClient::User)>;

    // The workers decode and encode pictures: they outlive the object, the decoder and the encoder outlive them. Throws
    // what `connect` does.
    SelectionClipboard(const Connect& connect, const ImageDecoder& decoder, const ImageEncoder& encoder,
                       WorkerExecutor& workers);
    SelectionClipboard(const SelectionClipboard&) = delete;
    SelectionClipboard& operator=(const SelectionClipboard&) = delete;
    // Finishes what was written and leaves the contents to the desktop's clipboard manager where there is one. Reads
    // that wait are given up.
    ~SelectionClipboard() override;

    std::int64_t changeCount(ClipboardSource source) const override { return changesOf(source).load(); }
    std::int64_t readCount() const override { return readsByOthers_.load(); }
    std::vector<ClipboardSource> pastedSources() const override { return {ClipboardSource::clipboard}; }

    // A picture, or the file of a picture that was copied in a file manager.
    Task<std::optional<Image>> readImage() override;
    Task<std::optional<std::string>> readString(ClipboardSource source) override;
    Task<std::vector<std::vector<std::string>>> readTypes(ClipboardSource source) override;
    Task<std::vector<std::byte>> readForm(std::size_t item, std::string type, ClipboardSource source) override;

    void writeString(std::string text, ClipboardSource source) override;
    void writeItems(std::vector<ClipboardItem> items, ClipboardSource source) override;

private:
    using Job = std::function<void(SelectionClient&)>;
    // What the thread is to do. Lives as long as somebody may add to it.
    class Jobs {
    public:
        Jobs();
        ~Jobs();
        Jobs(const Jobs&) = delete;
        Jobs& operator=(const Jobs&) = delete;

        // Any thread.
        void post(Job job);
        void wake() const;
        std::optional<Job> next();
        int wakeDescriptor() const { return wakeDescriptor_; }

    private:
        int wakeDescriptor_;
        std::mutex mutex_;
        std::deque<Job> jobs_;  // guarded by the mutex
    };

    SelectionClient::User user();
    const std::atomic<std::int64_t>& changesOf(ClipboardSource source) const {
        return source == ClipboardSource::primary ? primaryChanges_ : clipboardChanges_;
    }
    void countChange(ClipboardSource source) {
        ++(source == ClipboardSource::primary ? primaryChanges_ : clipboardChanges_);
    }
    void encode(std::shared_ptr<const std::vector<std::byte>> picture, std::string type,
                std::function<void(std::vector<std::byte>)> done);
    template <typename Result>
    Task<Result> ask(std::function<Result(SelectionClient&)> question);
    template <typename Result>
    Task<Result> askForAny(std::function<Result(SelectionClient&)> question);
    void run();

    const ImageDecoder& decoder_;
    const ImageEncoder& encoder_;
    WorkerExecutor& workers_;
    std::atomic<std::int64_t> clipboardChanges_ = 0;
    std::atomic<std::int64_t> primaryChanges_ = 0;
    std::atomic<std::int64_t> readsByOthers_ = 0;
    std::shared_ptr<Jobs> jobs_ = std::make_shared<Jobs>();
    std::stop_source closing_;
    std::stop_token reader_;                      // the thread's: stopped when nobody wants any more what it reads
    std::unique_ptr<SelectionClient> selection_;  // the thread's
    bool isOver_ = false;                         // the thread's
    std::thread thread_;                          // the last member: it uses the others
};

}  // namespace ovrin
