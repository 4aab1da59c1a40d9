// The windows that an input method of the toolkit opens beside the cursor, such as its list of candidates. They bypass
// the window manager, for which the toolkit gives no role to a window here (see LayerWindow), and so would not be seen:
// they become part of the window that is typed in. Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWindow>

#include "platform/linux/qt/layer_shell.h"

namespace ovrin {

class AttachedWindow final : public QObject {
    Q_OBJECT

public:
    // Attaches every such window of the application from now on. To be called once.
    static void attachAll(LayerShell& shell);

    // The object belongs to the window, which is about to be shown.
    AttachedWindow(LayerShell& shell, QWindow& window);
    ~AttachedWindow() override;

private slots:
    void attach();
    void end();
    void move();

private:
    QPoint place() const;

    LayerShell& shell_;
    QWindow& window_;
    QPointer<QWindow> owner_;
    wl_subsurface* role_ = nullptr;
};

}  // namespace ovrin
