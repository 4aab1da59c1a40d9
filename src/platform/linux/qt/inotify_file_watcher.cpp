#include "platform/linux/qt/inotify_file_watcher.h"

#include <QSocketNotifier>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

#include <sys/inotify.h>
#include <unistd.h>

namespace ovrin {

namespace {

namespace fs = std::filesystem;

// A file that is replaced is moved there; one that is written in place is closed after it.
constexpr std::uint32_t changesOfFiles = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;

class InotifyFileWatch final : public FileWatch {
public:
    InotifyFileWatch(const fs::path& file, std::function<void()> changed)
        : name_(file.filename().string()),
          changed_(std::move(changed)),
          descriptor_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
        if (descriptor_ < 0) return;
        ::inotify_add_watch(descriptor_, file.parent_path().c_str(), changesOfFiles | IN_ONLYDIR);
        notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { takeEvents(); });
    }
    InotifyFileWatch(const InotifyFileWatch&) = delete;
    InotifyFileWatch& operator=(const InotifyFileWatch&) = delete;
    ~InotifyFileWatch() override {
        // Its own notification may be destroying it.
        if (notifier_) {
            notifier_->setEnabled(false);
            notifier_.release()->deleteLater();
        }
        if (descriptor_ >= 0) ::close(descriptor_);
    }

private:
    void takeEvents() {
        bool isChanged = false;
        alignas(inotify_event) std::array<char, 4096> buffer;
        for (ssize_t length = 0; (length = ::read(descriptor_, buffer.data(), buffer.size())) > 0;) {
            for (const char* at = buffer.data(); at < buffer.data() + length;) {
                inotify_event event{};
                std::memcpy(&event, at, sizeof event);
                const bool isOfFile = event.len > 0 && name_ == at + sizeof event;
                const bool mayHaveMissed = (event.mask & IN_Q_OVERFLOW) != 0;
                isChanged = isChanged || isOfFile || mayHaveMissed;
                at += sizeof event + event.len;
            }
        }
        if (!isChanged) return;
        const auto changed = changed_;  // which may destroy this
        changed();
    }

    std::string name_;
    std::function<void()> changed_;
    int descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;  // none when the system gives no more descriptors
};

}  // namespace

std::unique_ptr<FileWatch> InotifyFileWatcher::watch(const fs::path& file, std::function<void()> changed) {
    std::error_code error;
    fs::path whole = fs::weakly_canonical(file, error);
    if (error) whole = file;
    return std::make_unique<InotifyFileWatch>(whole, std::move(changed));
}

}  // namespace ovrin
