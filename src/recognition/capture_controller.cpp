#include "recognition/capture_controller.h"

#include <utility>

#include "base/error.h"

namespace ovrin {

CaptureController::CaptureController(EventLoop& loop, CaptureOverlays& overlays, ScreenCapture& screen,
                                     std::function<void()> hideSettingsWindow)
    : overlays_(overlays), screen_(screen), hideSettingsWindow_(std::move(hideSettingsWindow)), showing_(loop) {}

void CaptureController::begin(Completion completion) {
    hideSettingsWindow_();
    reset();
    completion_ = std::move(completion);
    showing_.replace(showOverlays());
}

Task<void> CaptureController::showOverlays() {
    overlayWindows_.clear();
    const std::vector<DisplayRect> frames = overlays_.screenFrames();
    std::vector<std::optional<Image>> backdrops(frames.size());
    if (overlays_.needBackdrops()) {
        try {
            backdrops = co_await backdropsOf(frames);
        } catch (const CancellationError&) {
            cancelled();  // the user turned down the system's question
            co_return;
        }
    }
    for (std::size_t i = 0; i < frames.size(); ++i) {
        CaptureOverlays::Callbacks callbacks{.onSelection = [this](const DisplayRect& selection) { finish(selection); },
                                             .onCancel = [this] { cancelled(); },
                                             .onScreensChanged = [this] { showing_.replace(showOverlays()); }};
        auto window = overlays_.show(frames[i], std::move(backdrops[i]), std::move(callbacks));
        if (window) overlayWindows_.push_back(std::move(window));
    }
    if (overlayWindows_.empty()) {  // there is no display to choose on
        cancelled();
    } else {
        overlays_.activateApplication();
    }
}

// All are taken before the first overlay is shown.
Task<std::vector<std::optional<Image>>> CaptureController::backdropsOf(std::vector<DisplayRect> frames) {
    std::vector<std::optional<Image>> backdrops;
    for (const DisplayRect& frame : frames) {
        std::optional<Image>& backdrop = backdrops.emplace_back();
        try {
            backdrop = co_await screen_.capture(frame);
        } catch (const Error&) {
            continue;  // an overlay without one is merely dark
        }
    }
    co_return backdrops;
}

void CaptureController::cancelled() {
    if (completion_) {
        finish(std::make_exception_ptr(CancellationError()));
    } else {
        reset();
    }
}

void CaptureController::finish(const Result& result) {
    const Completion completion = std::exchange(completion_, {});
    reset();
    if (completion) completion(result);
}

void CaptureController::reset() {
    completion_ = {};
    showing_.cancel();
    overlayWindows_.clear();
}

}  // namespace ovrin
