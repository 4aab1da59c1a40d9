// A thin vertical bar over the edge of a scrolling widget, in place of the widget's own, which stays hidden. It takes
// no width away when it appears.
#pragma once

#include <QAbstractScrollArea>

#include "views/components/ov_widget.h"

class QScrollBar;

namespace ovrin {

class OVScrollBar final : public OVWidget {
    Q_OBJECT

public:
    // Becomes a child of the area and stays at its right edge.
    OVScrollBar(ViewEnvironment& environment, QAbstractScrollArea* area);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showIfNeeded();
    void placeAtEdge();
    double track() const;
    QRectF thumb() const;
    void dragTo(double y);

    QAbstractScrollArea* area_;
    QScrollBar* model_;
    double grip_ = 0;
    bool isDragging_ = false;
};

}  // namespace ovrin
