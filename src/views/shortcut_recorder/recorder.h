// The control with which the user records the key combination of one shortcut: a field that shows it, records the next
// combination when it is clicked, and has a button that clears it. Assistive technology hears the title of the shortcut
// as its name and the combination as its value.
#pragma once

#include <QPointer>

#include "platform/keyboard_layout.h"
#include "shortcuts/recorder_view_model.h"
#include "views/components/ov_alert.h"
#include "views/components/ov_button.h"
#include "views/components/ov_widget.h"

namespace ovrin::KeyboardShortcuts {

// While it records, the keyboard belongs to it, also the combinations that the desktop answers to.
class Recorder final : public OVWidget {
    Q_OBJECT

public:
    // All of them outlive it. title: of the shortcut.
    Recorder(ViewEnvironment& environment, const KeyboardLayout& layout, RecorderViewModel& viewModel,
             const QString& title, QWidget* parent = nullptr);
    ~Recorder() override;

    bool isRecording() const { return viewModel_.isRecording().value(); }
    void startRecording() { viewModel_.startRecording(); }
    // The combination, or what to do when there is none or one is being recorded.
    QString words() const;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void recordingDidChange();
    void handleIdleKey(const QKeyEvent& event);
    void follow(const RecorderOutcome& outcome);
    void showAlert(const RecorderAlert& alert);
    void describe();

    const KeyboardLayout& layout_;
    RecorderViewModel& viewModel_;
    QPointer<OVAlert> alert_;
    OVIconButton* clearButton_;
    Subscription textChanges_;
    Subscription recordingChanges_;
};

}  // namespace ovrin::KeyboardShortcuts
