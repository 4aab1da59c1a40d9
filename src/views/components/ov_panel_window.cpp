#include "views/components/ov_panel_window.h"

#include <QBitmap>
#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QStyleHints>
#include <QTimer>
#include <QWindow>
#include <array>
#include <utility>

#include "platform/linux/qt/window_role.h"
#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr double radius = 14;
constexpr int shadowMargin = 30;  // points around the frame
constexpr int lineWidth = 1;
constexpr double shadowBlur = 26;
constexpr double shadowOffset = 7;
constexpr int gripOutside = 6;  // points beside the frame where an edge can be taken hold of
constexpr int gripInside = 3;
constexpr int cornerGrip = 14;

Qt::CursorShape cursorFor(Qt::Edges edges) {
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge)) return Qt::SizeFDiagCursor;
    if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge)) return Qt::SizeBDiagCursor;
    return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

// Says whose window it is. The toolkit's own way would name the program twice in titles that begin with it.
QString titleInTaskBar(const QString& title) {
    const QString program = QStringLiteral("Ovrin");
    return title.startsWith(program) ? title : title + QStringLiteral(" — ") + program;
}

}  // namespace

// An invisible strip along an edge, or square at a corner, that resizes the window.
class OVPanelWindow::Edge final : public QWidget {
public:
    Edge(Qt::Edges edges, OVPanelWindow* window) : QWidget(window), edges_(edges) { setCursor(cursorFor(edges)); }

    void placeAround(const QRect& frame) {
        const QRect outer = frame.adjusted(-gripOutside, -gripOutside, gripOutside, gripOutside);
        QRect area = outer;
        const bool isCorner = (edges_ & (Qt::LeftEdge | Qt::RightEdge)) && (edges_ & (Qt::TopEdge | Qt::BottomEdge));
        const int depth = isCorner ? cornerGrip : gripOutside + gripInside;
        if (edges_ & Qt::LeftEdge) area.setRight(outer.left() + depth - 1);
        if (edges_ & Qt::RightEdge) area.setLeft(outer.right() - depth + 1);
        if (edges_ & Qt::TopEdge) area.setBottom(outer.top() + depth - 1);
        if (edges_ & Qt::BottomEdge) area.setTop(outer.bottom() - depth + 1);
        setGeometry(area);
        raise();
    }

protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton) window()->windowHandle()->startSystemResize(edges_);
    }

private:
    Qt::Edges edges_;
};

OVPanelWindow::OVPanelWindow(ViewEnvironment& environment, const QString& title, QSize size, QSize minimumSize,
                             WindowRole role)
    : OVWidget(environment), minimumFrame_(minimumSize) {
    giveRole(*this, role);
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(titleInTaskBar(title));
    const std::array<Qt::Edges, 8> all{Qt::LeftEdge,
                                       Qt::RightEdge,
                                       Qt::TopEdge,
                                       Qt::BottomEdge,
                                       Qt::LeftEdge | Qt::TopEdge,
                                       Qt::RightEdge | Qt::TopEdge,
                                       Qt::LeftEdge | Qt::BottomEdge,
                                       Qt::RightEdge | Qt::BottomEdge};
    for (const Qt::Edges edges : all) edges_.push_back(new Edge(edges, this));
    resize(size);
    setMinimumSize(minimumSize);
    adaptToDesktop();
    const QScreen* const screenOfPointer = QGuiApplication::screenAt(QCursor::pos());
    if (const QScreen* screen = screenOfPointer ? screenOfPointer : QGuiApplication::primaryScreen()) {
        move(screen->availableGeometry().center() - rect().center());
    }
    connect(&environment, &ViewEnvironment::changed, this, &OVPanelWindow::adaptToDesktop);
}

OVPanelWindow::~OVPanelWindow() = default;

void OVPanelWindow::setContent(QWidget* content) {
    if (QWidget* const before = std::exchange(content_, content)) {
        before->hide();
        before->deleteLater();
    }
    content_->setParent(this);
    layOut();
    content_->show();
}

void OVPanelWindow::setLevel(Level level) {
    const bool isFloating = level == Level::floating;
    // On a window that exists the toolkit would hide and make it anew for another flag; its native side can change it.
    overrideWindowFlags(windowFlags().setFlag(Qt::WindowStaysOnTopHint, isFloating));
    if (QWindow* const window = windowHandle()) window->setFlag(Qt::WindowStaysOnTopHint, isFloating);
}

void OVPanelWindow::setShadow(Shadow shadow) {
    shadow_ = shadow;
    adaptToDesktop();
}

void OVPanelWindow::setFrame(const QRect& frame) {
    setGeometry(frame.adjusted(-margin_, -margin_, margin_, margin_));
}

void OVPanelWindow::setMinimumFrame(QSize size) {
    minimumFrame_ = size;
    setMinimumSize(minimumFrame_ + QSize(2 * margin_, 2 * margin_));
}

void OVPanelWindow::present() {
    if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    activate(*windowHandle());
}

double OVPanelWindow::cornerRadius() const {
    return isFilling() ? 0 : radius;
}

void OVPanelWindow::adaptToDesktop() {
    const bool isWanted = shadow_ == Shadow::always || (shadow_ == Shadow::inDarkAppearance && environment().isDark());
    const bool hasShadow = isWanted && environment().settings().isComposited && !isFilling() && knowsOwnShadows();
    setMargin(hasShadow ? shadowMargin : 0);
    frameWithShadow_ = {};
    layOut();
    update();
}

// The frame stays where it is while the shadow around it comes or goes.
void OVPanelWindow::setMargin(int margin) {
    const int change = margin - margin_;
    if (change == 0) return;
    margin_ = margin;
    const QRect withMargin = geometry().adjusted(-change, -change, change, change);
    setMinimumFrame(minimumFrame_);  // which may resize it
    if (!isFilling()) setGeometry(withMargin);
}

void OVPanelWindow::layOut() {
    const int line = isFilling() ? 0 : lineWidth;  // which the content leaves visible
    const QRect inside = frameInWindow().adjusted(line, line, -line, -line);
    if (content_ != nullptr) content_->setGeometry(inside);
    layOutAbove(inside);
    for (Edge* const edge : edges_) {
        edge->setVisible(!isFilling());
        edge->placeAround(frameInWindow());
    }
    if (environment().settings().isComposited || isFilling()) {
        clearMask();
    } else {
        setMask(roundedShape(size(), cornerRadius()));
    }
    if (windowHandle() != nullptr && isVisible()) {
        setShadowMargins(*windowHandle(), {.shadow = margin_, .grip = gripOutside});
    }
}

void OVPanelWindow::drawFrame(QPainter& painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = frameInWindow();
    if (margin_ > 0) {
        drawShadow(painter, frame, cornerRadius(), shadowBlur, shadowOffset,
                   QColor::fromRgbF(0, 0, 0, environment().isDark() ? 0.5F : 0.2F));
    }
    QColor page = color(ColorToken::page);
    if (!environment().settings().reducesTransparency) {
        page.setAlphaF(static_cast<float>(theme::windowBackgroundOpacity(environment().settings().appearance)));
    }
    // Where nothing blends the corners the window is cut to its shape, and what the cut leaves must be opaque.
    if (!environment().settings().isComposited) painter.fillRect(frame, page);
    fillRounded(painter, frame, cornerRadius(), page);
    if (isFilling()) return;
    QColor line = color(ColorToken::ink);
    line.setAlphaF(environment().isDark() ? 0.16F : 0.12F);
    painter.setPen(QPen(line, lineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

// The shadow is drawn once for each size; what changes inside of the frame only needs the page below it.
void OVPanelWindow::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    const double ratio = devicePixelRatioF();
    if (frameWithShadow_.isNull() || drawnSize_ != size() || frameWithShadow_.devicePixelRatio() != ratio) {
        drawnSize_ = size();
        frameWithShadow_ = QPixmap(size() * ratio);
        frameWithShadow_.setDevicePixelRatio(ratio);
        frameWithShadow_.fill(Qt::transparent);
        QPainter once(&frameWithShadow_);
        drawFrame(once);
    }
    const QRectF dirty = event->rect();
    painter.drawPixmap(dirty, frameWithShadow_, QRectF(dirty.topLeft() * ratio, dirty.size() * ratio));
}

void OVPanelWindow::resizeEvent(QResizeEvent* /*event*/) {
    layOut();
}

void OVPanelWindow::showEvent(QShowEvent* /*event*/) {
    adaptToDesktop();
}

void OVPanelWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    emit closeRequested();
}

void OVPanelWindow::changeEvent(QEvent* event) {
    // Later, when it is what the desktop says: on Wayland the toolkit takes a state back at once that it has to ask
    // for.
    if (event->type() == QEvent::WindowStateChange) {
        QMetaObject::invokeMethod(this, &OVPanelWindow::adaptToDesktop, Qt::QueuedConnection);
    }
    OVWidget::changeEvent(event);
}

void OVPanelWindow::mousePressEvent(QMouseEvent* event) {
    mayMove_ = event->button() == Qt::LeftButton;
    pressed_ = event->globalPosition().toPoint();
}

void OVPanelWindow::mouseMoveEvent(QMouseEvent* event) {
    const int distance = (event->globalPosition().toPoint() - pressed_).manhattanLength();
    if (!mayMove_ || !(event->buttons() & Qt::LeftButton) ||
        distance < QGuiApplication::styleHints()->startDragDistance()) {
        return;
    }
    mayMove_ = false;  // the window manager takes over
    windowHandle()->startSystemMove();
}

}  // namespace ovrin
