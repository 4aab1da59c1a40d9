#include "recognition/capture_controller.h"

#include <utility>

#include "base/error.h"

namespace ovrin {

CaptureController::CaptureController(CaptureOverlays& overlays, std::function<void()> hideSettingsWindow)
    : overlays_(overlays), hideSettingsWindow_(std::move(hideSettingsWindow)) {}

void CaptureController::begin(Completion completion) {
    hideSettingsWindow_();
    reset();
    completion_ = std::move(completion);
    showOverlays();
}

void CaptureController::showOverlays() {
    overlayWindows_.clear();
    for (const DisplayRect& frame : overlays_.screenFrames()) {
        CaptureOverlays::Callbacks callbacks{.onSelection = [this](const DisplayRect& selection) { finish(selection); },
                                             .onCancel = [this] { cancelled(); },
                                             .onScreensChanged = [this] { showOverlays(); }};
        if (auto window = overlays_.show(frame, std::move(callbacks))) overlayWindows_.push_back(std::move(window));
    }
    if (overlayWindows_.empty()) return cancelled();  // there is no display to choose on
    overlays_.activateApplication();
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
    overlayWindows_.clear();
}

}  // namespace ovrin
