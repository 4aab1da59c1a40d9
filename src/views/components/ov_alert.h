// A question or a warning about a window, in front of it: a message, a line that explains it, and buttons. The window
// behind it takes no input until it is answered.
#pragma once

#include <QPointer>
#include <QString>
#include <cstdint>
#include <functional>

#include "views/components/ov_floating_window.h"

class QHBoxLayout;

namespace ovrin {

class OVButton;

class OVAlert final : public OVFloatingWindow {
    Q_OBJECT

public:
    struct Words {
        QString message;
        QString informativeText;  // may be empty
        QString dismissButton;    // which has the focus first; Escape presses it too
    };

    // Belongs to the owner's window. Destroys itself once it is answered.
    OVAlert(ViewEnvironment& environment, const Words& words, QWidget& owner);

    // A further button. Its action runs once the alert has gone, in place of dismissed().
    enum class Choice : std::uint8_t { ordinary, destructive };
    void addChoice(const QString& title, std::function<void()> action, Choice choice = Choice::ordinary);

    // Shows it, centred on the window it is about.
    void present();

signals:
    void dismissed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void leave();
    void dismiss();

    QPointer<QWidget> owner_;
    QHBoxLayout* buttons_;
    OVButton* dismissButton_;
};

}  // namespace ovrin
