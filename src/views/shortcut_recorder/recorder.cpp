#include "views/shortcut_recorder/recorder.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include "views/components/drawing.h"
#include "views/components/key_modifiers.h"

namespace ovrin::KeyboardShortcuts {

using theme::ColorToken;

namespace {

constexpr double cornerRadius = 8;
constexpr QSize fieldSize{240, 30};  // points; holds four modifiers and PageDown beside the button
constexpr int clearMargin = 1;
constexpr double textMargin = 8;
constexpr double ringWidth = 1.5;

bool isMovingOn(const QKeyEvent& event) {
    const bool isTab = event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
    return isTab && (event.modifiers() & ~Qt::ShiftModifier) == Qt::NoModifier;
}

// A button whose press starts the recording. Not every screen reader reads the values of buttons: the description,
// which goes on with what is said beside the recorder, begins with it.
class AccessibleRecorder final : public QAccessibleWidget {
public:
    explicit AccessibleRecorder(Recorder* recorder) : QAccessibleWidget(recorder, QAccessible::Button) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value) return recorder().words();
        if (kind != QAccessible::Description) return QAccessibleWidget::text(kind);
        return QStringList({recorder().words(), recorder().accessibleDescription(), recorder().toolTip()})
            .join(QLatin1Char('\n'));
    }
    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.pressed = recorder().isRecording();
        return state;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& name) override {
        if (name != pressAction()) return QAccessibleWidget::doAction(name);
        recorder().setFocus();
        recorder().startRecording();
    }

private:
    Recorder& recorder() const { return *static_cast<Recorder*>(widget()); }
};

QAccessibleInterface* makeAccessibleRecorder(const QString& className, QObject* object) {
    if (className != QLatin1String("ovrin::KeyboardShortcuts::Recorder")) return nullptr;
    return new AccessibleRecorder(static_cast<Recorder*>(object));
}

}  // namespace

Recorder::Recorder(ViewEnvironment& environment, const KeyboardLayout& layout, RecorderViewModel& viewModel,
                   const QString& title, QWidget* parent)
    : OVWidget(environment, parent),
      layout_(layout),
      viewModel_(viewModel),
      clearButton_(new OVIconButton(environment, OVIcon::close, QStringLiteral("清除“%1”的快捷键").arg(title), this)) {
    QAccessible::installFactory(&makeAccessibleRecorder);
    setAccessibleName(title);
    setFocusPolicy(Qt::StrongFocus);
    setFixedSize(fieldSize);
    setFont(toQFont(theme::font::bodyMedium));
    textChanges_ = viewModel_.text().onDidChange([this](const std::string&) { describe(); });
    recordingChanges_ = viewModel_.isRecording().onDidChange([this](bool) { recordingDidChange(); });
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state != Qt::ApplicationActive && !alert_) viewModel_.endRecording();
    });
    connect(clearButton_, &OVIconButton::clicked, this, [this] {
        setFocus();
        follow(viewModel_.clear());
    });
    clearButton_->move(width() - clearButton_->width() - clearMargin, clearMargin);
    describe();
}

Recorder::~Recorder() {
    viewModel_.endRecording();
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

QString Recorder::words() const {
    const bool isEmpty = isRecording() || viewModel_.text()->empty();
    return toQString(isEmpty ? viewModel_.placeholder() : viewModel_.text().value());
}

void Recorder::describe() {
    setToolTip(toQString(viewModel_.tooltip()));
    QAccessibleEvent change(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&change);
    clearButton_->setVisible(viewModel_.showsClearButton() && !isRecording());
    update();
}

void Recorder::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    viewModel_.startRecording();
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
        constexpr double inset = ringWidth / 2;
        painter.setPen(QPen(color(ColorToken::accent), ringWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(field.adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius);
    }

    const bool isEmpty = isRecording() || viewModel_.text()->empty();
    const ColorToken quiet = isRecording() ? ColorToken::accentInk : ColorToken::ink3;
    painter.setPen(color(isEmpty ? quiet : ColorToken::ink));
    // In the middle of the field; long words are smaller and take the room up to its left edge.
    const double side = clearButton_->width() + 2.0 * clearMargin;
    QRectF room = field.adjusted(side, 0, -side, 0);
    if (QFontMetricsF(font()).horizontalAdvance(words()) > room.width()) {
        room.setLeft(textMargin);
        painter.setFont(toQFont(theme::font::caption));
    }
    painter.drawText(room, Qt::AlignCenter,
                     QFontMetricsF(painter.font()).elidedText(words(), Qt::ElideMiddle, room.width()));
}

}  // namespace ovrin::KeyboardShortcuts
