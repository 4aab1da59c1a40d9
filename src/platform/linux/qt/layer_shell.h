// The compositor's layer shell on the connection of the window toolkit, which knows nothing of it: where it is offered,
// windows can be put at a place of an output, above all others. It also tells which of the windows that are there
// through it has the keyboard: the toolkit tells that of its own kinds of windows only. Main thread.
#pragma once

#include <QObject>
#include <QWindow>
#include <cstdint>
#include <functional>
#include <vector>

#include <wayland-client.h>

#include "wlr-layer-shell-unstable-v1-client.h"

namespace ovrin {

class LayerShell final : public QObject {
    Q_OBJECT

public:
    // Null where windows are not on Wayland, or the compositor has no such shell. It lives as long as the process.
    static LayerShell* ofToolkit();

    std::uint32_t version() const { return version_; }

    // Gives the window's surface, which has no role yet, one of the shell. Null output: the compositor chooses. The
    // events of the role come to the caller's listener by the toolkit's event loop; while waitFor() waits, from there.
    zwlr_layer_surface_v1* giveRole(QWindow& window, wl_output* output, std::uint32_t layer,
                                    const zwlr_layer_surface_v1_listener& listener, void* data);
    // Sends what is waiting and takes in what concerns the role until it is so. False when the compositor has gone.
    bool waitFor(zwlr_layer_surface_v1* role, const std::function<bool()>& isSo);
    // Ends the role, before the window's surface goes.
    void end(QWindow& window, zwlr_layer_surface_v1* role);

    // Attaches what belongs to a window there, such as a menu: in front of that, and as far beyond its edges as need
    // be. place: in points from the upper-left corner of the owner.
    wl_subsurface* attach(QWindow& window, QWindow& owner, const QPoint& place);

    bool hasKeyboard(const QWindow& window) const { return keyboardWindow_ == &window; }

    // As long as there is a window for the keyboard, the others make way for it: compositors show those of one layer
    // now the older and now the younger in front.
    bool isAnyForKeyboard() const { return forKeyboard_ > 0; }
    void addForKeyboard();
    void removeForKeyboard();

    static wl_surface* surfaceOf(QWindow& window);

signals:
    // The keyboard has gone from the window, be it to come back at once: some compositors give it back to such a window
    // after a click elsewhere.
    void keyboardLeft(QWindow* window);
    void isAnyForKeyboardChanged();

private:
    LayerShell() = default;

    void bind(wl_display* display);
    void addSeat(wl_registry* registry, std::uint32_t name, std::uint32_t version);
    void listenTo(wl_seat* seat, std::uint32_t capabilities);
    void setKeyboardWindow(QWindow* window);

    struct Shown {
        QWindow* window;
        wl_surface* surface;
    };
    struct Seat {
        wl_seat* seat = nullptr;
        wl_keyboard* keyboard = nullptr;
    };

    wl_display* display_ = nullptr;
    wl_event_queue* queue_ = nullptr;
    zwlr_layer_shell_v1* shell_ = nullptr;
    wl_subcompositor* subcompositor_ = nullptr;
    std::uint32_t version_ = 0;
    bool isOnKWin_ = false;
    std::vector<Seat> seats_;
    std::vector<Shown> shown_;
    QWindow* keyboardWindow_ = nullptr;
    int forKeyboard_ = 0;
};

}  // namespace ovrin
