#include "recognition/capture_controller.h"

#include <utility>

#include "base/error.h"
#include "recognition/capture_geometry.h"

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
    const std::vector<Rect> frames = overlays_.screenFrames();
    for (const Rect& frame : frames) {
        CaptureOverlays::Callbacks callbacks{
            .onSelection = [this, frame, height = frames.front().height](
                               const Rect& selection) { selected(selection, frame, height); },
            .onCancel = [this] { cancelled(); },
            .onScreensChanged = [this] { showOverlays(); }};
        if (auto window = overlays_.show(frame, std::move(callbacks))) overlayWindows_.push_back(std::move(window));
    }
    if (overlayWindows_.empty()) return cancelled();  // there is no display to choose on
    overlays_.activateApplication();
}

void CaptureController::selected(const Rect& selection, const Rect& screenFrame, double primaryHeight) {
    const Rect inWindowSpace{selection.x + screenFrame.x, selection.y + screenFrame.y, selection.width,
                             selection.height};
    finish(capture::toDisplaySpace(inWindowSpace, primaryHeight));
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
