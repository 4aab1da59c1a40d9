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

namespace ovrin {

class CaptureOverlayView final : public QWidget, public CaptureOverlayWindow {
    Q_OBJECT

public:
    // Covers the rectangle (points, upper-left origin) at once. backdrop is a picture of what lies beneath, for
    // displays that nothing composites; none lets the desktop shine through.
    CaptureOverlayView(const QRect& frame, QImage backdrop, CaptureOverlays::Callbacks callbacks);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void followScreens();
    void cancel();
    void updateSelection(const std::optional<Point>& previousPoint);
    QColor dimmingColor() const;
    Rect bounds() const;
    Point toViewSpace(const QPointF& position) const;
    QRectF fromViewSpace(const Rect& rectangle) const;
    QRegion drawnArea(const Rect& selection) const;
    QRectF sizeLabelFrame(const Rect& selection) const;
    void drawSelection(QPainter& painter, const Rect& selection) const;
    void drawSize(QPainter& painter, const Rect& selection) const;
    void drawHint(QPainter& painter) const;

    QImage backdrop_;
    CaptureOverlays::Callbacks callbacks_;
    std::optional<Point> startPoint_;    // view space
    std::optional<Point> currentPoint_;  // view space
    QVariantAnimation fadeIn_;           // 0..1
    QTimer screensSettle_;
};

}  // namespace ovrin
