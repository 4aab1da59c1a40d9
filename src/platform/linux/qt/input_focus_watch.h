// Tells when the keyboard has gone from a window to another one. The toolkit calls a window inactive already when
// another program grabs the keyboard for a moment, as input methods do for a key of theirs; here that counts for
// nothing as long as the X server's input focus stays where it is. Main thread.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>

class QWidget;

namespace ovrin {

class InputFocusWatch final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // The watch belongs to the window.
    explicit InputFocusWatch(QWidget& window);

signals:
    // The keyboard has gone to another window. Told only while the window is shown.
    void left();

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void judge();

    QWidget& window_;
    QTimer delay_;
};

}  // namespace ovrin
