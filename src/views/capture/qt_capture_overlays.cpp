#include "views/capture/qt_capture_overlays.h"

#include <QImage>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/error.h"
#include "platform/linux/qt/qt_screens.h"
#include "platform/linux/x11/x11_screenshot.h"
#include "views/capture/capture_overlay_view.h"
#include "views/components/drawing.h"
#include "views/components/view_environment.h"

namespace ovrin {

namespace {

// A copy of the screen to draw on, for displays that nothing composites. Without one the overlay is merely dark.
QImage backdropOf(const ScreenInfo& screen, X11Screenshot& screenshot) {
    try {
        QImage picture = toQImage(screenshot.take(screen.pixelFrame()));
        picture.reinterpretAsFormat(QImage::Format_RGB32);  // it is opaque, and quicker to draw as such
        picture.setDevicePixelRatio(screen.scaleFactor);
        return picture;
    } catch (const Error&) {
        QImage plain(screen.frame.size(), QImage::Format_RGB32);
        plain.fill(Qt::darkGray);
        return plain;
    }
}

int pixelsOf(double points, double scaleFactor) {
    return static_cast<int>(std::ceil(points * scaleFactor));
}

}  // namespace

std::vector<DisplayRect> QtCaptureOverlays::screenFrames() {
    std::vector<DisplayRect> frames;
    for (const ScreenInfo& screen : screenInfos()) frames.push_back(screen.displaySpaceFrame);
    return frames;
}

std::unique_ptr<CaptureOverlayWindow> QtCaptureOverlays::show(const DisplayRect& screenFrame, Callbacks callbacks) {
    const std::vector<ScreenInfo> screens = screenInfos();
    const auto screen = std::ranges::find(screens, screenFrame, &ScreenInfo::displaySpaceFrame);
    if (screen == screens.end()) return nullptr;  // unplugged this very moment
    QImage backdrop = environment_.settings().isComposited ? QImage() : backdropOf(*screen, screenshot_);
    // The picture is taken as soon as the screen has settled.
    callbacks.onSelection = [report = std::move(callbacks.onSelection), &screenshot = screenshot_,
                             scaleFactor = screen->scaleFactor](const DisplayRect& selection) {
        report(selection);
        screenshot.prepare(pixelsOf(selection.width, scaleFactor), pixelsOf(selection.height, scaleFactor));
    };
    return std::make_unique<CaptureOverlayView>(*screen, std::move(backdrop), std::move(callbacks));
}

}  // namespace ovrin
