// What a presenter keeps of its one window: the window with the view model that it shows, open or not there at all.
//
// A window may be closed from inside its own event or a notification of its view model: it is forgotten at once and
// destroyed by the loop, afterwards. What a closed window still asks for is not meant for its successor and does
// nothing.
#pragma once

#include <memory>
#include <utility>

#include "base/event_loop.h"

namespace ovrin {

// Main thread. The loop outlives it.
template <typename Window, typename ViewModel>
class ClosableWindow {
public:
    // The window goes before the view model that it shows.
    struct Content {
        std::shared_ptr<ViewModel> viewModel;  // null where the window gets one later
        std::unique_ptr<Window> window;
    };

private:
    struct Opened {
        Content content;
        bool isClosed = false;
    };

public:
    // Makes the requests of one window: they do nothing once it is closed.
    class Requests {
    public:
        explicit Requests(std::weak_ptr<Opened> asking) : asking_(std::move(asking)) {}

        template <typename Act>
        auto unlessClosed(Act act) const {
            return [asking = asking_, act = std::move(act)] {
                const auto opened = asking.lock();  // held while the request runs, which may close the window
                if (opened && !opened->isClosed) act();
            };
        }

    private:
        std::weak_ptr<Opened> asking_;
    };

    explicit ClosableWindow(EventLoop& loop) : loop_(loop) {}
    ClosableWindow(const ClosableWindow&) = delete;
    ClosableWindow& operator=(const ClosableWindow&) = delete;
    ~ClosableWindow() {
        if (opened_) opened_->isClosed = true;
    }

    bool isOpen() const { return opened_ != nullptr; }

    // Only while it is open.
    Window& window() const { return *opened_->content.window; }
    const std::shared_ptr<ViewModel>& viewModel() const { return opened_->content.viewModel; }
    // The open window shows this one from now on.
    void setViewModel(std::shared_ptr<ViewModel> viewModel) { opened_->content.viewModel = std::move(viewModel); }

    // Opens what make(const Requests&) gives as Content, in place of a window that is closed.
    template <typename Make>
    void open(Make make) {
        const auto opened = std::make_shared<Opened>();
        opened->content = make(Requests(opened));
        opened_ = opened;
    }

    // Forgets the window. What is returned lives at least until the loop comes round again, so that the presenter can
    // end what it does; null when none was open.
    std::shared_ptr<const Content> close() {
        if (!opened_) return nullptr;
        const auto closed = std::exchange(opened_, nullptr);
        closed->isClosed = true;
        loop_.post([closed] {});
        return {closed, &closed->content};
    }

private:
    EventLoop& loop_;
    std::shared_ptr<Opened> opened_;  // none when closed
};

}  // namespace ovrin
