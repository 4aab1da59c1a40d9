#include "platform/linux/qt/layer_window.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformwindow.h>

namespace ovrin {

namespace {

constexpr std::uint32_t changeOfLayerVersion = 2;
constexpr std::uint32_t keyboardOnDemandVersion = 4;
// Within which compositors that give the keyboard to a window that asks for it on demand have done so.
constexpr int keyboardPatienceMilliseconds = 60;

wl_output* outputOf(QScreen& screen) {
    return static_cast<wl_output*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForScreen("output", &screen));
}

// The compositor's points for each of the toolkit's, which may be scaled by its environment.
double nativeScale(const QWindow& window) {
    return window.devicePixelRatio() / window.handle()->devicePixelRatio();
}

// The toolkit makes its tool tips itself.
class ToolTips final : public QObject {
public:
    explicit ToolTips(LayerShell& shell) : shell_(shell) { QCoreApplication::instance()->installEventFilter(this); }

private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Polish && watched->inherits("QTipLabel")) {
            auto& toolTip = static_cast<QWidget&>(*watched);  // NOLINT: its type says so
            const QWidget* const parent = toolTip.parentWidget();
            if (parent != nullptr && LayerWindow::isOne(*parent->window()) && !LayerWindow::isOne(toolTip)) {
                new LayerWindow(shell_, toolTip, {.kind = LayerWindow::Kind::toolTip});
            }
        }
        return false;
    }

    LayerShell& shell_;
};

}  // namespace

// An invisible window over a whole output, below those that the click goes elsewhere of.
class LayerWindow::ClickCatcher final : public QWidget {
public:
    ClickCatcher(LayerShell& shell, std::uint32_t layer, const QScreen& screen, std::function<void()> clicked)
        : clicked_(std::move(clicked)) {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        new LayerWindow(shell, *this, {.place = Place::output, .layer = layer});
        setGeometry(screen.geometry());
        show();
    }

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override { clicked_(); }

private:
    std::function<void()> clicked_;
};

LayerWindow::LayerWindow(LayerShell& shell, QWidget& widget, const Setup& setup)
    : QObject(&widget), shell_(shell), widget_(widget), setup_(setup) {
    [[maybe_unused]] static const auto* const toolTips = new ToolTips(shell);
    widget_.setWindowFlag(Qt::BypassWindowManagerHint);
    widget_.setWindowFlag(Qt::FramelessWindowHint);
    widget_.installEventFilter(this);
    keyboardPatience_.setSingleShot(true);
    keyboardPatience_.setInterval(keyboardPatienceMilliseconds);
    connect(&keyboardPatience_, &QTimer::timeout, this, &LayerWindow::insistOnKeyboard);
    if (!isForKeyboard()) connect(&shell_, &LayerShell::isAnyForKeyboardChanged, this, &LayerWindow::changeLayer);
}

LayerWindow::~LayerWindow() {
    end();
}

bool LayerWindow::isOne(const QWidget& window) {
    return window.findChild<LayerWindow*>(QString(), Qt::FindDirectChildrenOnly) != nullptr;
}

bool LayerWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched != &widget_) return false;
    if (event->type() == QEvent::Show && !event->spontaneous()) comeUp();
    if (role_ != nullptr && (event->type() == QEvent::Move || event->type() == QEvent::Resize)) {
        place();
        QMetaObject::invokeMethod(this, &LayerWindow::commit, Qt::QueuedConnection);
    }
    return false;
}

// Between the making of the native window and its first picture.
void LayerWindow::comeUp() {
    end();
    window_ = widget_.windowHandle();
    screen_ = QGuiApplication::screenAt(widget_.geometry().center());
    if (screen_ == nullptr) screen_ = QGuiApplication::primaryScreen();
    if (screen_ == nullptr) return;
    window_->setScreen(screen_);
    // The toolkit destroys the surface as it hides the window and makes another one too late.
    if (window_->handle() == nullptr || LayerShell::surfaceOf(*window_) == nullptr) {
        window_->destroy();
        window_->create();
    }
    // The last word before the toolkit destroys the surface.
    connect(window_, &QWindow::visibleChanged, this, &LayerWindow::followVisibility, Qt::UniqueConnection);
    connect(window_, &QWindow::screenChanged, this, &LayerWindow::followScreen, Qt::UniqueConnection);
    if (setup_.kind == Kind::menu) catchClicks(ZWLR_LAYER_SHELL_V1_LAYER_TOP);
    if (QWindow* const owner = this->owner()) {
        const QPointF place = widget_.pos() - owner->position();
        attached_ = shell_.attach(*window_, *owner, (place * nativeScale(*window_)).toPoint());
    } else {
        takeRole();
    }
}

// The layer window that it belongs to, for menus and tool tips.
QWindow* LayerWindow::owner() const {
    const QWidget* const parent = setup_.kind == Kind::window ? nullptr : widget_.parentWidget();
    if (parent == nullptr || !isOne(*parent->window())) return nullptr;
    return parent->window()->windowHandle();
}

void LayerWindow::takeRole() {
    static constexpr zwlr_layer_surface_v1_listener listener = {
        [](void* self, zwlr_layer_surface_v1* /*role*/, std::uint32_t serial, std::uint32_t width,
           std::uint32_t height) { static_cast<LayerWindow*>(self)->handleConfigure(serial, width, height); },
        [](void* self, zwlr_layer_surface_v1* /*role*/) {
            // The output has gone.
            auto* const window = static_cast<LayerWindow*>(self);
            window->isAnswered_ = true;
            QMetaObject::invokeMethod(&window->widget_, &QWidget::close, Qt::QueuedConnection);
        }};
    isAnswered_ = false;
    const bool isWhereUserIs = setup_.place == Place::middle || setup_.place == Place::top;
    wl_output* const output = isWhereUserIs ? nullptr : outputOf(*screen_);
    role_ = shell_.giveRole(*window_, output, layer(), listener, this);
    if (isForKeyboard()) shell_.addForKeyboard();
    zwlr_layer_surface_v1_set_exclusive_zone(role_, isWhereUserIs ? 0 : -1);
    askForKeyboard();
    place();
    commit();
    shell_.waitFor(role_, [this] { return isAnswered_; });
}

// The compositor has chosen the output. What belongs to the window goes by where the widget is.
void LayerWindow::followScreen(QScreen* screen) {
    if (role_ == nullptr || setup_.place != Place::middle) return;
    screen_ = screen;
    widget_.move(screen->geometry().center() - widget_.rect().center());
}

void LayerWindow::askForKeyboard() {
    if (setup_.keyboard == Keyboard::none) return;
    const bool isOnDemand =
        setup_.keyboard == Keyboard::untilClickElsewhere && shell_.version() >= keyboardOnDemandVersion;
    zwlr_layer_surface_v1_set_keyboard_interactivity(
        role_, isOnDemand ? ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_ON_DEMAND
                          : ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE);
    if (isOnDemand) keyboardPatience_.start();
    if (setup_.keyboard == Keyboard::always) return;
    // On demand the keyboard goes with a click on another window; some compositors let it be with a click beside all.
    catchClicks(isOnDemand ? ZWLR_LAYER_SHELL_V1_LAYER_BOTTOM : ZWLR_LAYER_SHELL_V1_LAYER_TOP);
}

void LayerWindow::followVisibility(bool isVisible) {
    if (!isVisible) end();
}

void LayerWindow::end() {
    keyboardPatience_.stop();
    catchers_.clear();
    if (attached_ != nullptr) wl_subsurface_destroy(std::exchange(attached_, nullptr));
    if (role_ == nullptr) return;
    shell_.end(*window_, std::exchange(role_, nullptr));
    if (isForKeyboard()) shell_.removeForKeyboard();
}

std::uint32_t LayerWindow::layer() const {
    const bool makesWay = !isForKeyboard() && shell_.isAnyForKeyboard();
    return makesWay ? std::min<std::uint32_t>(setup_.layer, ZWLR_LAYER_SHELL_V1_LAYER_TOP) : setup_.layer;
}

void LayerWindow::changeLayer() {
    if (role_ == nullptr || shell_.version() < changeOfLayerVersion) return;
    zwlr_layer_surface_v1_set_layer(role_, layer());
    commit();
}

void LayerWindow::place() {
    if (screen_.isNull()) return;  // it closes soon
    const double scale = nativeScale(*window_);
    const auto native = [scale](int points) { return static_cast<std::int32_t>(std::lround(points * scale)); };
    const QRect frame = widget_.geometry().translated(-screen_->geometry().topLeft());
    switch (setup_.place) {
        case Place::own:
            zwlr_layer_surface_v1_set_anchor(role_,
                                             ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
            zwlr_layer_surface_v1_set_margin(role_, native(frame.y()), 0, 0, native(frame.x()));
            break;
        case Place::middle:
            zwlr_layer_surface_v1_set_anchor(role_, 0);
            break;
        case Place::top:
            zwlr_layer_surface_v1_set_anchor(role_, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP);
            zwlr_layer_surface_v1_set_margin(role_, native(frame.y()), 0, 0, 0);
            break;
        case Place::output:
            zwlr_layer_surface_v1_set_anchor(
                role_, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                           ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
            zwlr_layer_surface_v1_set_size(role_, 0, 0);
            return;
    }
    zwlr_layer_surface_v1_set_size(role_, static_cast<std::uint32_t>(native(frame.width())),
                                   static_cast<std::uint32_t>(native(frame.height())));
}

// Lets what was asked of the role take effect, with the picture that is there.
void LayerWindow::commit() {
    if (role_ != nullptr) wl_surface_commit(LayerShell::surfaceOf(*window_));
}

void LayerWindow::handleConfigure(std::uint32_t serial, std::uint32_t width, std::uint32_t height) {
    zwlr_layer_surface_v1_ack_configure(role_, serial);
    isAnswered_ = true;
    if (setup_.place != Place::output || width == 0 || height == 0) return;
    const double scale = nativeScale(*window_);
    widget_.resize(static_cast<int>(std::lround(width / scale)), static_cast<int>(std::lround(height / scale)));
}

// Some compositors give the keyboard only once the window is clicked on.
void LayerWindow::insistOnKeyboard() {
    if (role_ == nullptr || shell_.hasKeyboard(*window_)) return;
    zwlr_layer_surface_v1_set_keyboard_interactivity(role_, ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE);
    commit();
    catchClicks(ZWLR_LAYER_SHELL_V1_LAYER_TOP);
}

// The toolkit sends a click beside a menu to the menu, which closes by it, wherever its own windows are.
void LayerWindow::catchClicks(std::uint32_t layer) {
    catchers_.clear();
    for (const QScreen* const screen : QGuiApplication::screens()) {
        catchers_.push_back(std::make_unique<ClickCatcher>(shell_, layer, *screen, [this] {
            QMetaObject::invokeMethod(&widget_, &QWidget::close, Qt::QueuedConnection);
        }));
    }
}

}  // namespace ovrin
