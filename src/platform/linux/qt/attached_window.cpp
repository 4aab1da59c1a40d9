#include "platform/linux/qt/attached_window.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMetaObject>
#include <utility>

#include <qpa/qplatformwindow.h>

namespace ovrin {

namespace {

class Finder final : public QObject {
public:
    explicit Finder(LayerShell& shell) : QObject(&shell), shell_(shell) { qGuiApp->installEventFilter(this); }

private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Show || !watched->isWindowType()) return false;
        auto& window = static_cast<QWindow&>(*watched);  // NOLINT: its type says so
        const bool isBypassing = window.flags().testFlag(Qt::BypassWindowManagerHint);
        // Those of widgets are the program's own.
        if (!isBypassing || window.inherits("QWidgetWindow")) return false;
        if (window.findChild<AttachedWindow*>(QString(), Qt::FindDirectChildrenOnly) == nullptr) {
            new AttachedWindow(shell_, window);
        }
        return false;
    }

    LayerShell& shell_;
};

}  // namespace

void AttachedWindow::attachAll(LayerShell& shell) {
    new Finder(shell);
}

AttachedWindow::AttachedWindow(LayerShell& shell, QWindow& window) : QObject(&window), shell_(shell), window_(window) {
    connect(&window, &QWindow::visibleChanged, this, [this](bool isVisible) {
        if (!isVisible) end();
    });
    connect(&window, &QWindow::xChanged, this, &AttachedWindow::move);
    connect(&window, &QWindow::yChanged, this, &AttachedWindow::move);
    // Each time it is shown, the toolkit makes another surface. It tells so under one of these names.
    if (auto* const native = dynamic_cast<QObject*>(window.handle())) {
        for (const char* const name : {"wlSurfaceCreated()", "surfaceCreated()"}) {
            if (native->metaObject()->indexOfSignal(name) < 0) continue;
            const QByteArray signal = QByteArray::number(QSIGNAL_CODE) + name;
            connect(native, signal.constData(), this, SLOT(attach()));
        }
    }
    if (LayerShell::surfaceOf(window) != nullptr) attach();
}

AttachedWindow::~AttachedWindow() {
    end();
}

void AttachedWindow::attach() {
    end();
    owner_ = window_.transientParent() != nullptr ? window_.transientParent() : QGuiApplication::focusWindow();
    if (owner_.isNull() || LayerShell::surfaceOf(*owner_) == nullptr) return;
    role_ = shell_.attach(window_, *owner_, place());
}

void AttachedWindow::end() {
    if (role_ != nullptr) wl_subsurface_destroy(std::exchange(role_, nullptr));
}

QPoint AttachedWindow::place() const {
    const double scale = owner_->devicePixelRatio() / owner_->handle()->devicePixelRatio();
    return (QPointF(window_.position() - owner_->position()) * scale).toPoint();
}

void AttachedWindow::move() {
    if (role_ == nullptr || owner_.isNull() || LayerShell::surfaceOf(*owner_) == nullptr) return;
    const QPoint place = this->place();
    wl_subsurface_set_position(role_, place.x(), place.y());
    wl_surface_commit(LayerShell::surfaceOf(*owner_));
}

}  // namespace ovrin
