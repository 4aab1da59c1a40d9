#include "views/shortcut_recorder/recorder.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include "views/components/drawing.h"
#include "views/components/key_modifiers.h"

namespace ovrin::KeyboardShortcuts {

using theme::ColorToken;

namespace {

constexpr double cornerRadius = 8;
constexpr QSize fieldSize{232, 30};  // points; holds Super+Ctrl+Shift+PageDown beside the button
constexpr double sideWidth = 28;     // of the clear button, and of the warning opposite
constexpr double glyphSize = 12;

bool isMovingOn(const QKeyEvent& event) {
    const bool isTab = event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
    return isTab && (event.modifiers() & ~Qt::ShiftModifier) == Qt::NoModifier;
}

}  // namespace

Recorder::Recorder(ViewEnvironment& environment, const KeyboardLayout& layout, RecorderViewModel& viewModel,
                   QWidget* parent)
    : OVWidget(environment, parent), layout_(layout), viewModel_(viewModel) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFont(toQFont(theme::font::bodyMedium));
    textChanges_ = viewModel_.text().onDidChange([this](const std::string&) { describe(); });
    recordingChanges_ = viewModel_.isRecording().onDidChange([this](bool) { recordingDidChange(); });
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state != Qt::ApplicationActive && !alert_) viewModel_.endRecording();
    });
    describe();
}

Recorder::~Recorder() {
    viewModel_.endRecording();
}

QSize Recorder::sizeHint() const {
    return fieldSize;
}

// Combinations that would otherwise move the focus or trigger something in this window are for recording.
bool Recorder::event(QEvent* event) {
    if (isRecording() && event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    if (isRecording() && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);  // NOLINT: its type says so
        if (!isMovingOn(*key)) {
            keyPressEvent(key);
            return true;
        }
    }
    return OVWidget::event(event);
}

// A click anywhere else ends the recording, also where nothing takes the focus.
bool Recorder::eventFilter(QObject* watched, QEvent* event) {
    const bool isElsewhere = watched->isWidgetType() && watched != this;
    if (event->type() == QEvent::MouseButtonPress && isElsewhere && !alert_) viewModel_.endRecording();
    return OVWidget::eventFilter(watched, event);
}

void Recorder::recordingDidChange() {
    if (isRecording()) {
        qApp->installEventFilter(this);
        grabKeyboard();
    } else {
        qApp->removeEventFilter(this);
        releaseKeyboard();
    }
    describe();
}

void Recorder::describe() {
    const auto failure = viewModel_.registrationFailure();
    setToolTip(toQString(failure.value_or(viewModel_.tooltip())));
    setAccessibleName(toQString(viewModel_.text()->empty() ? viewModel_.placeholder() : viewModel_.text().value()));
    setAccessibleDescription(toolTip());
    update();
}

QRectF Recorder::clearButton() const {
    return {width() - sideWidth, 0, sideWidth, static_cast<double>(height())};
}

void Recorder::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (offersClearing() && clearButton().contains(event->position())) return follow(viewModel_.clear());
    viewModel_.startRecording();
}

void Recorder::mouseMoveEvent(QMouseEvent* event) {
    isClearHovered_ = offersClearing() && clearButton().contains(event->position());
    update();
}

void Recorder::leaveEvent(QEvent* /*event*/) {
    isClearHovered_ = false;
    update();
}

void Recorder::keyPressEvent(QKeyEvent* event) {
    if (!isRecording()) return handleIdleKey(*event);
    if (event->isAutoRepeat()) return;
    follow(viewModel_.handleKeyPress(layout_.key(event->nativeScanCode()),
                                     static_cast<int>(shortcutModifiers(event->modifiers()))));
}

// The keyboard's way to what the mouse does.
void Recorder::handleIdleKey(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return viewModel_.startRecording();
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            return follow(viewModel_.clear());
        default:
            OVWidget::keyPressEvent(const_cast<QKeyEvent*>(&event));  // NOLINT: lets it go on to the parent
    }
}

void Recorder::focusInEvent(QFocusEvent* /*event*/) {
    update();
}

void Recorder::focusOutEvent(QFocusEvent* /*event*/) {
    if (!alert_) viewModel_.endRecording();
    update();
}

void Recorder::hideEvent(QHideEvent* /*event*/) {
    viewModel_.endRecording();
}

void Recorder::follow(const RecorderOutcome& outcome) {
    using enum RecorderOutcome::Kind;
    if (outcome.kind == beep) QApplication::beep();
    if (outcome.kind == alert) showAlert(*outcome.alert);
}

// The alert has the keyboard for a while; then the recording goes on.
void Recorder::showAlert(const RecorderAlert& alert) {
    releaseKeyboard();
    alert_ = new OVAlert(environment(),
                         {.message = toQString(alert.message),
                          .informativeText = toQString(alert.informativeText),
                          .dismissButton = toQString(alert.dismissButton)},
                         *this);
    if (alert.forceUseButton) {
        alert_->addChoice(toQString(*alert.forceUseButton), [this] {
            alert_.clear();
            follow(viewModel_.forceUse());
        });
    }
    connect(alert_, &OVAlert::dismissed, this, [this] {
        alert_.clear();
        setFocus();
        if (isRecording()) grabKeyboard();
    });
    alert_->present();
}

void Recorder::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF field(rect());
    fillRounded(painter, field, cornerRadius, color(ColorToken::inset));
    if (hasFocus() || isRecording()) {
        QColor ring = color(ColorToken::accent);
        ring.setAlphaF(isRecording() ? 1.0F : 0.5F);
        painter.setPen(QPen(ring, 1.25));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(field.adjusted(0.75, 0.75, -0.75, -0.75), cornerRadius, cornerRadius);
    }

    const bool isEmpty = isRecording() || viewModel_.text()->empty();
    const QString words = toQString(isEmpty ? viewModel_.placeholder() : viewModel_.text().value());
    painter.setPen(color(isEmpty ? ColorToken::ink3 : ColorToken::ink));
    const QRectF room = field.adjusted(sideWidth, 0, -sideWidth, 0);
    painter.drawText(room, Qt::AlignCenter, QFontMetricsF(font()).elidedText(words, Qt::ElideMiddle, room.width()));

    if (viewModel_.registrationFailure()) {
        drawIcon(painter, OVIcon::triangleAlert, QRectF(0, 0, sideWidth, height()), glyphSize,
                 color(ColorToken::orange));
    }
    if (offersClearing()) {
        drawIcon(painter, OVIcon::close, clearButton(), glyphSize,
                 color(isClearHovered_ ? ColorToken::ink : ColorToken::ink3));
    }
}

}  // namespace ovrin::KeyboardShortcuts
