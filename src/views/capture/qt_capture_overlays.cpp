#include "views/capture/qt_capture_overlays.h"

#include <QImage>
#include <algorithm>
#include <utility>

#include "platform/linux/qt/qt_screens.h"
#include "views/capture/capture_overlay_view.h"
#include "views/components/drawing.h"
#include "views/components/view_environment.h"

namespace ovrin {

namespace {

// What an overlay is drawn on where nothing composites it with the screen; merely dark without a picture of it.
QImage groundOf(const ScreenInfo& screen, const std::optional<Image>& backdrop) {
    if (!backdrop) {
        QImage plain(screen.frame.size(), QImage::Format_RGB32);
        plain.fill(Qt::darkGray);
        return plain;
    }
    QImage picture = toQImage(*backdrop);
    picture.reinterpretAsFormat(QImage::Format_RGB32);  // it is opaque, and quicker to draw as such
    picture.setDevicePixelRatio(screen.scaleFactor);
    return picture;
}

}  // namespace

std::vector<DisplayRect> QtCaptureOverlays::screenFrames() {
    std::vector<DisplayRect> frames;
    for (const ScreenInfo& screen : screenInfos()) frames.push_back(screen.displaySpaceFrame);
    return frames;
}

bool QtCaptureOverlays::needBackdrops() {
    return !environment_.settings().isComposited;
}

std::unique_ptr<CaptureOverlayWindow> QtCaptureOverlays::show(const DisplayRect& screenFrame,
                                                              std::optional<Image> backdrop, Callbacks callbacks) {
    const std::vector<ScreenInfo> screens = screenInfos();
    const auto screen = std::ranges::find(screens, screenFrame, &ScreenInfo::displaySpaceFrame);
    if (screen == screens.end()) return nullptr;  // unplugged this very moment
    QImage ground = needBackdrops() ? groundOf(*screen, backdrop) : QImage();
    return std::make_unique<CaptureOverlayView>(*screen, std::move(ground), std::move(callbacks));
}

}  // namespace ovrin
