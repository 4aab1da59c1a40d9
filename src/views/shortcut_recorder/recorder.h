// The control with which the user records the key combination of one shortcut: a field that shows it, records the next
// combination when it is clicked, and has a button that clears it.
#pragma once

#include <QPointer>

#include "platform/keyboard_layout.h"
#include "shortcuts/recorder_view_model.h"
#include "views/components/ov_alert.h"
#include "views/components/ov_widget.h"

namespace ovrin::KeyboardShortcuts {

// While it records, the keyboard belongs to it, also the combinations that the desktop answers to.
class Recorder final : public OVWidget {
    Q_OBJECT

public:
    // All of them outlive it.
    Recorder(ViewEnvironment& environment, const KeyboardLayout& layout, RecorderViewModel& viewModel,
             QWidget* parent = nullptr);
    ~Recorder() override;

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    bool isRecording() const { return viewModel_.isRecording().value(); }
    bool offersClearing() const { return viewModel_.showsClearButton() && !isRecording(); }
    QRectF clearButton() const;
    void recordingDidChange();
    void handleIdleKey(const QKeyEvent& event);
    void follow(const RecorderOutcome& outcome);
    void showAlert(const RecorderAlert& alert);
    void describe();

    const KeyboardLayout& layout_;
    RecorderViewModel& viewModel_;
    QPointer<OVAlert> alert_;
    bool isClearHovered_ = false;
    Subscription textChanges_;
    Subscription recordingChanges_;
};

}  // namespace ovrin::KeyboardShortcuts
