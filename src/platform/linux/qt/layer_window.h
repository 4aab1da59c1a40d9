// A window that the compositor's layer shell shows: at its own place on an output, above all others. The toolkit makes
// no shell surface for it, because it bypasses the window manager; the role is given here each time it comes up. Main
// thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/linux/qt/layer_shell.h"

class QWidget;

namespace ovrin {

class LayerWindow final : public QObject {
    Q_OBJECT

public:
    enum class Place : std::uint8_t {
        own,     // where the widget is
        middle,  // of the output where the user is, as far as panels leave it free
        top,     // the same at its top, as far down as the widget is on its screen
        output   // all of the one where the widget is
    };
    enum class Keyboard : std::uint8_t {
        none,
        // From when it comes up until the user turns away, which closes it.
        untilClickElsewhere,
        always
    };
    enum class Kind : std::uint8_t {
        window,
        menu,    // closes by a click elsewhere; in front of the layer window that it belongs to, if any
        toolTip  // the same without the click
    };
    struct Setup {
        Place place = Place::own;
        Keyboard keyboard = Keyboard::none;
        Kind kind = Kind::window;
        std::uint32_t layer = ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY;
    };

    // For a widget that has not been shown as another kind of window. The object belongs to the widget.
    LayerWindow(LayerShell& shell, QWidget& widget, const Setup& setup);
    ~LayerWindow() override;

    static bool isOne(const QWidget& window);

private:
    class ClickCatcher;

    bool eventFilter(QObject* watched, QEvent* event) override;
    void comeUp();
    void takeRole();
    void followScreen(QScreen* screen);
    void askForKeyboard();
    QWindow* owner() const;
    void followVisibility(bool isVisible);
    void end();
    bool isForKeyboard() const { return setup_.keyboard != Keyboard::none; }
    std::uint32_t layer() const;
    void changeLayer();
    void place();
    void commit();
    void insistOnKeyboard();
    // layer: above other programs' windows, or below them.
    void catchClicks(std::uint32_t layer);
    void handleConfigure(std::uint32_t serial, std::uint32_t width, std::uint32_t height);

    LayerShell& shell_;
    QWidget& widget_;
    Setup setup_;
    zwlr_layer_surface_v1* role_ = nullptr;
    wl_subsurface* attached_ = nullptr;  // instead of the role
    bool isAnswered_ = false;            // with a size, or that there is no output any more
    QPointer<QScreen> screen_;
    QPointer<QWindow> window_;
    QTimer keyboardPatience_;
    std::vector<std::unique_ptr<QWidget>> catchers_;
};

}  // namespace ovrin
