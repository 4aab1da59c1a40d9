// The overlay of one display: dims it, tells what to do, and shows the selection while it is dragged.
#pragma once

#include <QImage>
#include <QRegion>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>
#include <optional>

#include "base/geometry.h"
#include "platform/capture_overlays.h"
#include "platform/linux/qt/paced_updates.h"
#include "platform/linux/qt/qt_screens.h"

namespace ovrin {

class CaptureOverlayView final : public QWidget, public CaptureOverlayWindow {
    Q_OBJECT

public:
    // Covers the display at once. backdrop is a picture of what lies beneath, for displays that nothing composites;
    // none lets the desktop shine through.
    CaptureOverlayView(const ScreenInfo& screen, QImage backdrop, CaptureOverlays::Callbacks callbacks);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* /*event*/) override {}  // nothing of it looks different then
    void focusOutEvent(QFocusEvent* /*event*/) override {}

private:
    void followScreens();
    void cancel();
    void updateSelection(const std::optional<LocalPoint>& previousPoint);
    QColor dimmingColor() const;
    LocalRect bounds() const;
    QRegion drawnArea(const LocalRect& selection) const;
    QRectF sizeLabelFrame(const LocalRect& selection) const;
    void drawSelection(QPainter& painter, const LocalRect& selection) const;
    void drawSize(QPainter& painter, const LocalRect& selection) const;
    void drawHint(QPainter& painter) const;

    DisplayRect screenFrame_;
    QImage backdrop_;
    CaptureOverlays::Callbacks callbacks_;
    std::optional<LocalPoint> startPoint_;
    std::optional<LocalPoint> currentPoint_;
    QVariantAnimation fadeIn_;  // 0..1
    PacedUpdates* pacedUpdates_ = nullptr;
    QTimer screensSettle_;
};

}  // namespace ovrin
