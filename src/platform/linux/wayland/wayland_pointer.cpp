#include "platform/linux/wayland/wayland_pointer.h"

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/linux/desktop/picture_memory.h"
#include "viewporter-client.h"
#include "wlr-layer-shell-unstable-v1-client.h"

namespace ovrin {
namespace {

// The first versions have no request for it.
void endShell(zwlr_layer_shell_v1* shell) {
    const bool isTold = zwlr_layer_shell_v1_get_version(shell) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION;
    isTold ? zwlr_layer_shell_v1_destroy(shell) : wl_proxy_destroy(reinterpret_cast<wl_proxy*>(shell));
}

// Of the interfaces that are the same in every version that matters here.
struct Globals {
    WaylandObject<wl_compositor, wl_compositor_destroy> compositor;
    WaylandObject<zwlr_layer_shell_v1, endShell> shell;
    WaylandObject<wp_viewporter, wp_viewporter_destroy> viewporter;  // may be null
    WaylandObject<wl_seat, wl_seat_release> seat;
    wl_shm* memory = nullptr;

    explicit Globals(WaylandConnection& connection)
        : compositor(connection.bind<wl_compositor>(wl_compositor_interface, 1)),
          shell(connection.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface,
                                                     ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION)),
          viewporter(connection.bind<wp_viewporter>(wp_viewporter_interface, 1)),
          seat(connection.seat() == nullptr ? nullptr : connection.bindSeat()),
          memory(connection.sharedMemory()) {}

    bool areComplete() const { return compositor && shell && seat && memory != nullptr; }
};

// Covers an output with nothing to be seen, above all else. Moved nowhere: the compositor's events know its address.
class TransparentSurface {
public:
    TransparentSurface(const Globals& globals, const WaylandOutput& output)
        : globals_(globals),
          output_(output),
          surface_(wl_compositor_create_surface(globals.compositor.get())),
          // By this name KWin does not have it fade in and out.
          role_(zwlr_layer_shell_v1_get_layer_surface(globals.shell.get(), surface_.get(), output.output,
                                                      ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "utility")) {
        static constexpr zwlr_layer_surface_v1_listener listener = {
            [](void* self, zwlr_layer_surface_v1* /*role*/, std::uint32_t serial, std::uint32_t width,
               std::uint32_t height) {
                static_cast<TransparentSurface*>(self)->show(serial, static_cast<int>(width), static_cast<int>(height));
            },
            [](void* /*self*/, zwlr_layer_surface_v1* /*role*/) {}};
        zwlr_layer_surface_v1_add_listener(role_.get(), &listener, this);
        zwlr_layer_surface_v1_set_anchor(role_.get(), allEdges);
        zwlr_layer_surface_v1_set_exclusive_zone(role_.get(), panelsIncluded);
        wl_surface_commit(surface_.get());
    }

    bool is(wl_surface* surface) const { return surface_.get() == surface; }
    const WaylandOutput& output() const { return output_; }

private:
    static constexpr std::uint32_t allEdges = ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                                              ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
    static constexpr int panelsIncluded = -1;

    // One pixel is enough where the compositor stretches it.
    void show(std::uint32_t serial, int width, int height) {
        zwlr_layer_surface_v1_ack_configure(role_.get(), serial);
        if (buffer_ || width <= 0 || height <= 0) return;
        const int columns = globals_.viewporter ? 1 : width;
        const int rows = globals_.viewporter ? 1 : height;
        constexpr int bytesPerPixel = 4;
        const int bytesPerRow = columns * bytesPerPixel;
        memory_ = std::make_unique<PictureMemory>(static_cast<std::size_t>(bytesPerRow * rows));
        const WaylandObject<wl_shm_pool, wl_shm_pool_destroy> pool(
            wl_shm_create_pool(globals_.memory, memory_->descriptor(), bytesPerRow * rows));
        buffer_.reset(wl_shm_pool_create_buffer(pool.get(), 0, columns, rows, bytesPerRow, WL_SHM_FORMAT_ARGB8888));
        if (globals_.viewporter) {
            viewport_.reset(wp_viewporter_get_viewport(globals_.viewporter.get(), surface_.get()));
            wp_viewport_set_destination(viewport_.get(), width, height);
        }
        wl_surface_attach(surface_.get(), buffer_.get(), 0, 0);
        wl_surface_damage(surface_.get(), 0, 0, width, height);
        wl_surface_commit(surface_.get());
    }

    const Globals& globals_;
    const WaylandOutput& output_;
    std::unique_ptr<PictureMemory> memory_;
    WaylandObject<wl_surface, wl_surface_destroy> surface_;
    WaylandObject<zwlr_layer_surface_v1, zwlr_layer_surface_v1_destroy> role_;
    WaylandObject<wp_viewport, wp_viewport_destroy> viewport_;
    WaylandObject<wl_buffer, wl_buffer_destroy> buffer_;
};

struct Search {
    bool hasPointer = false;
    std::vector<std::unique_ptr<TransparentSurface>> surfaces;
    std::optional<WaylandPointerPlace> found;
};

// Of the version that the seat is bound in; how many members later ones add depends on the library.
constexpr wl_pointer_listener pointerListener = [] {
    wl_pointer_listener listener{};
    listener.enter = [](void* data, wl_pointer* /*pointer*/, std::uint32_t /*serial*/, wl_surface* surface,
                        wl_fixed_t x, wl_fixed_t y) {
        Search& search = *static_cast<Search*>(data);
        for (const auto& candidate : search.surfaces) {
            if (!candidate->is(surface)) continue;
            search.found = {.outputName = candidate->output().name,
                            .outputFrame = candidate->output().frame,
                            .point = {wl_fixed_to_double(x), wl_fixed_to_double(y)}};
        }
    };
    listener.leave = [](void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*serial*/, wl_surface* /*surface*/) {};
    listener.motion = [](void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*time*/, wl_fixed_t /*x*/,
                         wl_fixed_t /*y*/) {};
    listener.button = [](void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*serial*/, std::uint32_t /*time*/,
                         std::uint32_t /*button*/, std::uint32_t /*state*/) {};
    listener.frame = [](void* /*data*/, wl_pointer* /*pointer*/) {};
    listener.axis_source = [](void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*source*/) {};
    listener.axis_stop = [](void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*time*/, std::uint32_t /*axis*/) {};
    listener.axis_discrete = [](void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*axis*/,
                                std::int32_t /*steps*/) {};
    listener.axis = [](void* /*data*/, wl_pointer* /*pointer*/, std::uint32_t /*time*/, std::uint32_t /*axis*/,
                       wl_fixed_t /*value*/) {};
    return listener;
}();

// Asking a seat without one for its pointer would be an error of the protocol.
void findCapabilities(const WaylandConnection& connection, wl_seat* seat, Search& search) {
    static constexpr wl_seat_listener listener = {[](void* data, wl_seat* /*seat*/, std::uint32_t capabilities) {
                                                      static_cast<Search*>(data)->hasPointer =
                                                          (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
                                                  },
                                                  [](void* /*data*/, wl_seat* /*seat*/, const char* /*name*/) {}};
    wl_seat_add_listener(seat, &listener, &search);
    connection.roundTrip();
}

}  // namespace

bool WaylandPointer::isOfferedBy(const WaylandConnection& connection) {
    return connection.versionOf(zwlr_layer_shell_v1_interface) > 0;
}

std::optional<WaylandPointerPlace> WaylandPointer::find(WaylandConnection& connection) {
    const Globals globals(connection);
    if (!globals.areComplete()) return std::nullopt;
    Search search;
    findCapabilities(connection, globals.seat.get(), search);
    if (!search.hasPointer) return std::nullopt;
    const WaylandObject<wl_pointer, wl_pointer_release> pointer(wl_seat_get_pointer(globals.seat.get()));
    wl_pointer_add_listener(pointer.get(), &pointerListener, &search);
    for (const WaylandOutput& output : connection.outputs()) {
        search.surfaces.push_back(std::make_unique<TransparentSurface>(globals, output));
    }
    connection.waitUntil([&] { return search.found.has_value(); }, patience);
    return search.found;
}

}  // namespace ovrin
