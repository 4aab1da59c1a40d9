#include "views/components/ov_title_bar.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QStyleHints>
#include <QWindow>
#include <cmath>

#include "platform/linux/qt/window_role.h"
#include "views/components/drawing.h"
#include "views/components/ov_button.h"
#include "views/components/ov_menu.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int buttonSide = 28;
constexpr int buttonGap = 4;
constexpr int edgeGap = 9;
constexpr double buttonRadius = 7;
constexpr double glyphSide = 9;
constexpr double stroke = 1.3;
constexpr double behindOffset = 2.5;  // of the rectangle behind, in the glyph of a maximised window

enum class Glyph : std::uint8_t { minimize, maximize, restore, close };

// area is a square of glyphSide around the middle of the button.
void drawGlyph(QPainter& painter, Glyph glyph, const QRectF& area) {
    switch (glyph) {
        case Glyph::minimize:
            painter.drawLine(QPointF(area.left(), area.center().y()), QPointF(area.right(), area.center().y()));
            return;
        case Glyph::maximize:
            painter.drawRoundedRect(area, 1.5, 1.5);
            return;
        case Glyph::restore: {
            const QRectF front = area.adjusted(0, behindOffset, -behindOffset, 0);
            painter.drawRoundedRect(front, 1.5, 1.5);
            painter.drawPolyline(QPolygonF({QPointF(area.left() + behindOffset, area.top()), area.topRight(),
                                            QPointF(area.right(), area.bottom() - behindOffset)}));
            return;
        }
        case Glyph::close:
            painter.drawLine(area.topLeft(), area.bottomRight());
            painter.drawLine(area.bottomLeft(), area.topRight());
            return;
    }
}

}  // namespace

class OVTitleBar::Button final : public OVButtonBase {
public:
    Button(ViewEnvironment& environment, Glyph glyph, const QString& label)
        : OVButtonBase(environment, nullptr), glyph_(glyph) {
        setFixedSize(buttonSide, buttonSide);
        set(glyph, label);
    }

    void set(Glyph glyph, const QString& label) {
        glyph_ = glyph;
        setAccessibleName(label);
        setToolTip(label);
        update();
    }

    QSize sizeHint() const override { return {buttonSide, buttonSide}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor ground =
            environment().color(glyph_ == Glyph::close && isHovered() ? ColorToken::red : ColorToken::hover);
        ground.setAlphaF(glyph_ == Glyph::close && isHovered() ? 0.16F : 1.0F);
        if (isHovered() || isDown()) fillRounded(painter, rect(), buttonRadius, ground);
        const ColorToken ink = glyph_ == Glyph::close && isHovered() ? ColorToken::red
                               : isHovered()                         ? ColorToken::ink
                                                                     : ColorToken::ink2;
        painter.setPen(QPen(environment().color(ink), stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        const double inset = (buttonSide - glyphSide) / 2;
        drawGlyph(painter, glyph_, QRectF(inset, inset, glyphSide, glyphSide));
        drawFocusRing(painter, buttonRadius);
    }

private:
    Glyph glyph_;
};

OVTitleBar::OVTitleBar(ViewEnvironment& environment, QWidget* window)
    : OVWidget(environment, window), maximize_(new Button(environment, Glyph::maximize, {})) {
    auto* minimize = new Button(environment, Glyph::minimize, QStringLiteral("最小化"));
    auto* close = new Button(environment, Glyph::close, QStringLiteral("关闭"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, edgeGap, 0);
    row->setSpacing(buttonGap);
    row->addStretch();
    row->addWidget(minimize);
    row->addWidget(maximize_);
    row->addWidget(close);
    connect(minimize, &QAbstractButton::clicked, this, &OVTitleBar::minimize);
    connect(maximize_, &QAbstractButton::clicked, this, &OVTitleBar::toggleMaximized);
    connect(close, &QAbstractButton::clicked, this, &OVTitleBar::closeRequested);
    window->installEventFilter(this);
    nameMaximizeButton();
}

void OVTitleBar::nameMaximizeButton() {
    if (window()->isMaximized()) {
        maximize_->set(Glyph::restore, QStringLiteral("还原"));
    } else {
        maximize_->set(Glyph::maximize, QStringLiteral("最大化"));
    }
}

bool OVTitleBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::WindowStateChange) nameMaximizeButton();
    return OVWidget::eventFilter(watched, event);
}

void OVTitleBar::minimize() {
    window()->setWindowState(window()->windowState() | Qt::WindowMinimized);
}

void OVTitleBar::toggleMaximized() {
    window()->setWindowState(window()->windowState() ^ Qt::WindowMaximized);
}

void OVTitleBar::mousePressEvent(QMouseEvent* event) {
    mayMove_ = event->button() == Qt::LeftButton;
    pressed_ = event->globalPosition().toPoint();
}

void OVTitleBar::mouseMoveEvent(QMouseEvent* event) {
    const int distance = (event->globalPosition().toPoint() - pressed_).manhattanLength();
    if (!mayMove_ || !(event->buttons() & Qt::LeftButton) ||
        distance < QGuiApplication::styleHints()->startDragDistance()) {
        return;
    }
    mayMove_ = false;  // the window manager takes over
    window()->windowHandle()->startSystemMove();
}

void OVTitleBar::mouseDoubleClickEvent(QMouseEvent* event) {
    mayMove_ = false;
    if (event->button() == Qt::LeftButton) toggleMaximized();
}

// The window manager's own menu, or where that cannot be asked for, one of what the bar can do.
void OVTitleBar::contextMenuEvent(QContextMenuEvent* event) {
    if (showWindowMenu(*window()->windowHandle())) return;
    auto* menu = new OVMenu(environment(), this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->add(QStringLiteral("最小化"), OVMenu::Entry::available, [this] { minimize(); });
    menu->add(maximize_->accessibleName(), OVMenu::Entry::available, [this] { toggleMaximized(); });
    menu->addSeparator();
    menu->add(QStringLiteral("关闭"), OVMenu::Entry::available, [this] { emit closeRequested(); });
    menu->popup(event->globalPos());
}

}  // namespace ovrin
