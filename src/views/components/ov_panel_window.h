// An ordinary window that draws its own frame: rounded, with a soft shadow where the desktop allows it, moved by its
// background and resized at its edges. It appears in the task bar under its title.
#pragma once

#include <QPixmap>
#include <QRect>
#include <QSize>
#include <QString>
#include <cstdint>
#include <vector>

#include "platform/linux/qt/window_role.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class OVPanelWindow : public OVWidget {
    Q_OBJECT

public:
    enum class Level : std::uint8_t { normal, floating };  // floating stays above other programs' windows

    enum class Shadow : std::uint8_t { always, inDarkAppearance, never };

    // Sizes are those of the frame, without the shadow. It is made centred on the screen of the pointer, and hidden.
    OVPanelWindow(ViewEnvironment& environment, const QString& title, QSize size, QSize minimumSize,
                  WindowRole role = WindowRole::ordinary);
    ~OVPanelWindow() override;

    // The content before leaves the screen at once and is destroyed after the present event, which may be its own. The
    // frame keeps its place and size.
    void setContent(QWidget* content);
    QWidget* content() const { return content_; }

    void setLevel(Level level);
    void setShadow(Shadow shadow);
    // On the screen, without the shadow.
    QRect frame() const { return frameInWindow().translated(geometry().topLeft()); }
    void setFrame(const QRect& frame);
    void setMinimumFrame(QSize size);
    // Shows it, in front and with the keyboard.
    void present();

signals:
    // The user or the desktop wants it closed. It stays on the screen until its owner hides or destroys it.
    void closeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

    // Places what a window has over its content, between that and the edges.
    virtual void layOutAbove(const QRect& /*content*/) {}

private:
    class Edge;

    QRect frameInWindow() const { return rect().adjusted(margin_, margin_, -margin_, -margin_); }
    bool isFilling() const { return (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) != 0; }
    double cornerRadius() const;
    void adaptToDesktop();
    void setMargin(int margin);
    void layOut();
    void drawFrame(QPainter& painter) const;

    QSize minimumFrame_;
    QWidget* content_ = nullptr;
    Shadow shadow_ = Shadow::always;
    std::vector<Edge*> edges_;
    int margin_ = 0;  // of the shadow, in points
    QPixmap frameWithShadow_;
    QSize drawnSize_;  // the window's when it was drawn
    QPoint pressed_;
    bool mayMove_ = false;
};

}  // namespace ovrin
