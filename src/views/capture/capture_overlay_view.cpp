#include "views/capture/capture_overlay_view.h"

#include <QEasingCurve>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/qt/window_role.h"
#include "recognition/capture_geometry.h"
#include "theme/type_scale.h"
#include "views/components/drawing.h"

namespace ovrin {

namespace {

constexpr int fadeInMilliseconds = 160;
constexpr int frameMilliseconds = 16;
constexpr int screensSettlingTime = 50;  // milliseconds
constexpr float dimming = 0.32F;
constexpr double selectionRadius = 5;

const theme::FontStyle sizeFont{10.5, theme::FontWeight::medium, theme::FontDesign::standard};
const theme::FontStyle hintFont{12.5, theme::FontWeight::medium, theme::FontDesign::standard};
const theme::FontStyle keyFont{10.5, theme::FontWeight::medium, theme::FontDesign::standard};

QColor black(float alpha) {
    return QColor::fromRgbF(0, 0, 0, alpha);
}
QColor white(float alpha) {
    return QColor::fromRgbF(1, 1, 1, alpha);
}

// Half-point sizes matter in labels this small.
QFont labelFont(const theme::FontStyle& style) {
    QFont font = toQFont(style);
    font.setPointSizeF(style.size * 72 / 96);
    return font;
}

Size measured(const QFont& font, const QString& text) {
    const QFontMetricsF metrics(font);
    return {metrics.horizontalAdvance(text), metrics.height()};
}

// Every digit takes the room of the widest, so that the words of the size keep still while it changes.
double advance(const QFontMetricsF& metrics, QChar character) {
    if (!character.isDigit()) return metrics.horizontalAdvance(character);
    double widest = 0;
    for (const QChar digit : QStringView(u"0123456789")) widest = std::max(widest, metrics.horizontalAdvance(digit));
    return widest;
}

Size measuredWithEvenDigits(const QFont& font, const QString& text) {
    const QFontMetricsF metrics(font);
    double width = 0;
    for (const QChar character : text) width += advance(metrics, character);
    return {width, metrics.height()};
}

void drawWithEvenDigits(QPainter& painter, const QRectF& label, const QString& text) {
    const QFontMetricsF metrics(painter.font());
    double x = label.center().x() - measuredWithEvenDigits(painter.font(), text).width / 2;
    for (const QChar character : text) {
        const double width = advance(metrics, character);
        painter.drawText(QRectF(x, label.top(), width, label.height()), Qt::AlignCenter | Qt::TextDontClip,
                         QString(character));
        x += width;
    }
}

LocalPoint toLocalPoint(const QPointF& position) {
    return {position.x(), position.y()};
}

}  // namespace

CaptureOverlayView::CaptureOverlayView(const ScreenInfo& screen, QImage backdrop, CaptureOverlays::Callbacks callbacks)
    : screenFrame_(screen.displaySpaceFrame), backdrop_(std::move(backdrop)), callbacks_(std::move(callbacks)) {
    giveRole(*this, WindowRole::overlay);
    setAttribute(backdrop_.isNull() ? Qt::WA_TranslucentBackground : Qt::WA_OpaquePaintEvent);
    setCursor(Qt::CrossCursor);
    setFocusPolicy(Qt::StrongFocus);
    setGeometry(screen.frame);
    fadeIn_.setStartValue(0.0);
    fadeIn_.setEndValue(1.0);
    fadeIn_.setDuration(fadeInMilliseconds);
    fadeIn_.setEasingCurve(QEasingCurve::OutCubic);
    fadeIn_.setCurrentTime(frameMilliseconds);  // a first frame without any dimming would be one that comes late
    create();
    // The program's own first picture takes longer.
    if (backdrop_.isNull()) setFirstColor(*windowHandle(), dimmingColor());
    pacedUpdates_ = new PacedUpdates(*this);
    connect(&fadeIn_, &QVariantAnimation::valueChanged, this, [this] { pacedUpdates_->update(rect()); });
    show();
    raise();
    followScreens();
}

// What the pointer has changed since it was at the place.
void CaptureOverlayView::updateSelection(const std::optional<LocalPoint>& previousPoint) {
    QRegion area = drawnArea(capture::selectionBetween(*startPoint_, *currentPoint_));
    if (previousPoint) area += drawnArea(capture::selectionBetween(*startPoint_, *previousPoint));
    pacedUpdates_->update(area);
}

QRegion CaptureOverlayView::drawnArea(const LocalRect& selection) const {
    constexpr int lineMargin = 3;
    const QRect area = toQRectF(selection).toAlignedRect();
    return QRegion(area.adjusted(-lineMargin, -lineMargin, lineMargin, lineMargin)) +
           sizeLabelFrame(selection).toAlignedRect();
}

// One change of the displays comes as several events; it is reported once they are through.
void CaptureOverlayView::followScreens() {
    screensSettle_.setSingleShot(true);
    connect(&screensSettle_, &QTimer::timeout, this,
            [this] { QTimer::singleShot(0, this, [report = callbacks_.onScreensChanged] { report(); }); });
    const auto changed = [this] { screensSettle_.start(screensSettlingTime); };
    connect(qGuiApp, &QGuiApplication::screenAdded, this, changed);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, changed);
    for (const QScreen* screen : QGuiApplication::screens()) {
        connect(screen, &QScreen::geometryChanged, this, changed);
    }
}

QColor CaptureOverlayView::dimmingColor() const {
    return black(dimming * fadeIn_.currentValue().toFloat());
}

LocalRect CaptureOverlayView::bounds() const {
    return {0, 0, static_cast<double>(width()), static_cast<double>(height())};
}

void CaptureOverlayView::paintEvent(QPaintEvent* event) {
    // From the first frame on, so that what it takes to come up is not taken off.
    if (fadeIn_.state() == QAbstractAnimation::Stopped && fadeIn_.currentTime() == frameMilliseconds) fadeIn_.start();

    QPainter painter(this);
    if (backdrop_.isNull()) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(event->rect(), dimmingColor());
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    } else {
        painter.drawImage(rect(), backdrop_);
        painter.fillRect(event->rect(), dimmingColor());
    }
    painter.setOpacity(fadeIn_.currentValue().toDouble());
    painter.setRenderHint(QPainter::Antialiasing);
    if (startPoint_ && currentPoint_) {
        drawSelection(painter, capture::selectionBetween(*startPoint_, *currentPoint_));
    } else {
        drawHint(painter);
    }
}

void CaptureOverlayView::drawSelection(QPainter& painter, const LocalRect& selection) const {
    QPainterPath path;
    path.addRoundedRect(toQRectF(selection), selectionRadius, selectionRadius);
    painter.save();
    painter.setClipPath(path);
    if (backdrop_.isNull()) {
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillPath(path, Qt::black);
    } else {
        painter.setOpacity(1);
        painter.drawImage(rect(), backdrop_);
    }
    painter.restore();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(black(0.28F), 3.0));
    painter.drawPath(path);
    painter.setPen(QPen(white(0.96F), 1.25));
    painter.drawPath(path);
    drawSize(painter, selection);
}

QRectF CaptureOverlayView::sizeLabelFrame(const LocalRect& selection) const {
    const QString text = toQString(capture::sizeLabelText(selection));
    return toQRectF(capture::sizeLabelFrame(selection, bounds(), measuredWithEvenDigits(labelFont(sizeFont), text)));
}

void CaptureOverlayView::drawSize(QPainter& painter, const LocalRect& selection) const {
    const QRectF label = sizeLabelFrame(selection);
    fillRounded(painter, label, 8, black(0.62F));
    painter.setFont(labelFont(sizeFont));
    painter.setPen(white(0.88F));
    drawWithEvenDigits(painter, label, toQString(capture::sizeLabelText(selection)));
}

void CaptureOverlayView::drawHint(QPainter& painter) const {
    const QString hint = QStringLiteral("拖拽选择区域");
    const QString key = QStringLiteral("esc");
    const QFont hintText = labelFont(hintFont);
    const QFont keyText = labelFont(keyFont);
    const Size hintSize = measured(hintText, hint);
    const Size keySize = measured(keyText, key);
    const capture::HintLayout layout = capture::hintLayout(bounds(), hintSize, keySize);

    const QRectF pill = toQRectF(layout.pill);
    painter.setPen(QPen(white(0.12F), 0.75));
    painter.setBrush(black(0.58F));
    painter.drawRoundedRect(pill, 18, 18);
    fillRounded(painter, toQRectF(layout.keyBox), 6, white(0.1F));

    const auto drawText = [&](const QFont& font, const QColor& color, const LocalPoint& origin, const Size& size,
                              const QString& text) {
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(QRectF(origin.x, origin.y, std::ceil(size.width) + 1, size.height),
                         Qt::AlignLeft | Qt::AlignVCenter, text);
    };
    drawText(hintText, white(0.92F), layout.hintOrigin, hintSize, hint);
    drawText(keyText, white(0.72F), layout.keyOrigin, keySize, key);
}

void CaptureOverlayView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) return cancel();
    if (event->button() != Qt::LeftButton) return;
    startPoint_ = currentPoint_ = toLocalPoint(event->position());
    pacedUpdates_->update(rect());  // the hint goes
}

void CaptureOverlayView::mouseMoveEvent(QMouseEvent* event) {
    if (!startPoint_) return;
    const std::optional<LocalPoint> previousPoint = std::exchange(currentPoint_, toLocalPoint(event->position()));
    updateSelection(previousPoint);
}

void CaptureOverlayView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !startPoint_) return;
    currentPoint_ = toLocalPoint(event->position());
    const LocalRect selection = capture::selectionBetween(*startPoint_, *currentPoint_);
    if (!capture::isSelection(selection)) {
        startPoint_.reset();
        currentPoint_.reset();
        pacedUpdates_->update(rect());
        return;
    }
    // As in cancel().
    QTimer::singleShot(
        0, this, [report = callbacks_.onSelection, place = toDisplaySpace(selection, screenFrame_)] { report(place); });
}

void CaptureOverlayView::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
    cancel();
}

// The overlays are destroyed by what follows: not from inside the event of one of them.
void CaptureOverlayView::cancel() {
    QTimer::singleShot(0, this, [report = callbacks_.onCancel] { report(); });
}

}  // namespace ovrin
